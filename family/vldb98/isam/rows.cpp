#include "isam/rows.h"

#include <cassert>
#include <cstring>

#include "records/numbers.h"
#include "vlba98/date.h"
#include "vlba98/encoding.h"
#include "vlba98/money.h"

namespace vldb98 {
namespace {

constexpr std::string_view kBlank = " ";

std::string_view withoutTrailingBlanks(std::string_view text) {
  size_t last = text.find_last_not_of(kBlank);
  return last == std::string_view::npos ? std::string_view{} : text.substr(0, last + 1);
}

void bindText(SqlStatement &statement, int parameter, std::string_view cp1252, Scratch &scratch) {
  size_t room = cp1252.size() * vlba98::maxUtf8PerByte;
  char *utf8 = scratch.take(room);
  size_t length = vlba98::utf8FromWindows1252(cp1252.data(), cp1252.size(), utf8);
  scratch.giveBack(room - length);
  statement.bind(parameter, std::string_view(utf8, length));
}

// A date of a key may be a mere bound, such as the day after the 31st, so its digits are not looked at as a calendar
// day.
void bindReversedDate(SqlStatement &statement, int parameter, const char *reversed, Scratch &scratch) {
  int code = vlba98::twotoi(reversed);
  if (code < 0) return statement.bind(parameter, std::string_view{});
  char *iso = scratch.take(10);
  int year = vlba98::firstYear + code;
  iso[0] = char('0' + year / 1000);
  iso[1] = char('0' + year / 100 % 10);
  iso[2] = char('0' + year / 10 % 10);
  iso[3] = char('0' + year % 10);
  iso[4] = iso[7] = '-';
  std::memcpy(iso + 5, reversed + 2, 2);
  std::memcpy(iso + 8, reversed + 4, 2);
  statement.bind(parameter, std::string_view(iso, 10));
}

// Into a field that holds nothing but zeros.
bool readColumn(SqlStatement &statement, int column, const Field &field, char *at) {
  if (field.type < FieldType::Text) return storeNumber(field.type, statement.integer(column), at);
  switch (field.type) {
  case FieldType::Money: {
    const auto hundredths = statement.number(column);
    return !hundredths || vlba98::formatMoney(*hundredths, at, field.size - 1u);
  }
  case FieldType::Year: {
    const auto year = statement.number(column);
    return !year || vlba98::itotwo(int(*year) - vlba98::firstYear, at);
  }
  case FieldType::Date: {
    std::string_view iso = statement.text(column);
    if (iso.empty()) return true;
    auto date = vlba98::fromIso(iso);
    if (!date) return false;
    std::memcpy(at, vlba98::toReversed(*date).data(), field.size);
    return true;
  }
  default:
    break;
  }
  const std::string_view utf8 = statement.text(column);
  const size_t width = field.size - 1u;
  size_t length = 0;
  if (!utf8.empty() && !vlba98::windows1252FromUtf8(utf8.data(), utf8.size(), at, width, length)) return false;
  // Nothing of a sequence that was cut stays after it.
  if (field.type == FieldType::KeyText) std::memset(at + length, ' ', width - length);
  at[field.type == FieldType::KeyText ? width : length] = 0;
  return true;
}

} // namespace

char *Scratch::take(size_t size) {
  assert(used_ + size <= sizeof bytes_);
  char *start = bytes_ + used_;
  used_ += size;
  return start;
}

bool bindField(SqlStatement &statement, int parameter, const Field &field, const char *record, Scratch &scratch) {
  const char *at = record + field.offset;
  if (field.type < FieldType::Text) {
    statement.bind(parameter, loadNumber(field.type, at));
    return true;
  }
  const void *end = std::memchr(at, 0, field.size);
  if (!end) return false;
  std::string_view text(at, size_t(static_cast<const char *>(end) - at));
  switch (field.type) {
  case FieldType::Money:
    if (text.empty()) {
      statement.bindNull(parameter);
      return true;
    }
    if (auto hundredths = vlba98::parseMoney(text)) {
      statement.bind(parameter, *hundredths);
      return true;
    }
    return false;
  case FieldType::Date:
    if (!text.empty() && !vlba98::fromReversed(text)) return false;
    bindReversedDate(statement, parameter, at, scratch);
    return true;
  case FieldType::Year:
    if (text.empty())
      statement.bindNull(parameter);
    else if (int code = vlba98::twotoi(at); code >= 0)
      statement.bind(parameter, int64_t(vlba98::firstYear + code));
    else
      return false;
    return true;
  case FieldType::KeyText:
    text = withoutTrailingBlanks(text);
    break;
  default:
    break;
  }
  bindText(statement, parameter, text, scratch);
  return true;
}

void bindKeyField(SqlStatement &statement, int parameter, const Field &field, const char *bytes, Scratch &scratch) {
  if (field.type < FieldType::Text) return statement.bind(parameter, loadNumber(field.type, bytes));
  if (field.type == FieldType::Date) return bindReversedDate(statement, parameter, bytes, scratch);
  size_t width = field.keyWidth();
  size_t length = ::strnlen(bytes, width);
  std::string_view text(bytes, length);
  if (field.type == FieldType::Text || length == 0) return bindText(statement, parameter, text, scratch);
  if (length == width) return bindText(statement, parameter, withoutTrailingBlanks(text), scratch);
  // A key text that was not padded is none of the keys there are, and sorts right after the one that it resembles.
  char unpadded[kKeySize + 1];
  std::memcpy(unpadded, bytes, length);
  unpadded[length] = '\x01';
  bindText(statement, parameter, std::string_view(unpadded, length + 1), scratch);
}

bool readRecord(SqlStatement &statement, int column, const Table &table, char *record) {
  // Whole fields: what another record left after a text would go into keys and to the caller.
  std::memset(record, 0, table.recordSize);
  for (const Field &field : table.fields)
    if (!readColumn(statement, column++, field, record + field.offset)) return false;
  return true;
}

} // namespace vldb98
