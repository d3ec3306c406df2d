#include "postings/fields.h"

#include <cstring>

#include "vlba98/date.h"
#include "vlba98/text.h"

namespace postings {
namespace {

using frame::Parameter;

enum class Part : uint8_t { Head, Line, OwnAmounts, Cost };
enum class Kind : uint8_t { Number, Text, Date };

constexpr uint16_t kNowhere = UINT16_MAX;

struct Field {
  PostingField id;
  Part part;
  Kind kind;
  uint16_t width; // bytes
  uint16_t offset;
  uint16_t inSingle; // offset in ZELK_BUCHUNG
  uint16_t inSplit;  // offset in the record of the part
  const char *label;
};

using HeadRecord = ZELK_SPLITBUCHUNG;
using LineRecord = ZELK_TEILBUCHUNG;

#define COMMON(part, field, kind)                                                                                      \
  PostingField::field, Part::part, Kind::kind, sizeof(Posting##part::field), offsetof(Posting##part, field)
#define IN_RECORDS(part, field, kind, label)                                                                           \
  Field{COMMON(part, field, kind), offsetof(ZELK_BUCHUNG, field), offsetof(part##Record, field), label},
#define IN_SPLIT(part, field, kind, label)                                                                             \
  Field{COMMON(part, field, kind), kNowhere, offsetof(part##Record, field), label},
#define IN_PIECES(part, field, kind, label) Field{COMMON(part, field, kind), kNowhere, kNowhere, label},
constexpr Field kFields[] = {POSTING_FIELDS(IN_RECORDS, IN_SPLIT, IN_PIECES)};
#undef COMMON
#undef IN_RECORDS
#undef IN_SPLIT
#undef IN_PIECES

// Fields are copied from the records as they are. Where they stand there, the public header asserts.
#define IN_PIECES(part, field, ...)
#define IN_SPLIT(part, field, ...) static_assert(sizeof(Posting##part::field) == sizeof(part##Record::field));
#define IN_RECORDS(part, field, ...)                                                                                   \
  IN_SPLIT(part, field) static_assert(sizeof(Posting##part::field) == sizeof(ZELK_BUCHUNG::field));
POSTING_FIELDS(IN_RECORDS, IN_SPLIT, IN_PIECES)
static_assert(sizeof(ZELK_SPLITBUCHUNG::Teilbuchung) == kRecordLines * sizeof(ZELK_TEILBUCHUNG));
#undef IN_RECORDS
#undef IN_SPLIT
#undef IN_PIECES

constexpr size_t countOf(Part part) {
  return size_t(std::count_if(std::begin(kFields), std::end(kFields), [=](const Field &f) { return f.part == part; }));
}

// The fields of a part in the order of its record.
template <Part part> constexpr auto inRecordOrder() {
  std::array<Field, countOf(part)> fields{};
  std::copy_if(std::begin(kFields), std::end(kFields), fields.begin(), [](const Field &f) { return f.part == part; });
  std::sort(fields.begin(), fields.end(), [](const Field &a, const Field &b) { return a.inSplit < b.inSplit; });
  return fields;
}
constexpr auto kHeadFields = inRecordOrder<Part::Head>();
constexpr auto kLineFields = inRecordOrder<Part::Line>();

const Field &fieldOf(const FlatArgument &argument) {
  return kFields[size_t(argument.field)];
}

Parameter parameter(const Field &field, const char *at) {
  if (field.kind != Kind::Number) return frame::field(field.label, at, field.width);
  int32_t value;
  std::memcpy(&value, at, sizeof value);
  return frame::number(field.label, value);
}

template <class Fields, class PartOfPosting>
void addParameters(std::vector<Parameter> &parameters, const Fields &fields, const PartOfPosting &part) {
  for (const Field &field : fields)
    parameters.push_back(parameter(field, reinterpret_cast<const char *>(&part) + field.offset));
}

template <class Fields, class PartOfPosting, class Record>
void copyFields(PartOfPosting &part, const Fields &fields, const Record &record, uint16_t Field::*inRecord) {
  char *to = reinterpret_cast<char *>(&part);
  const char *from = reinterpret_cast<const char *>(&record);
  for (const Field &field : fields)
    if (field.*inRecord != kNowhere) std::memcpy(to + field.offset, from + field.*inRecord, field.width);
}

enum class TooLong : uint8_t { IsCut, StaysSo };

void putText(char *to, const Field &field, const char *text, TooLong tooLong) {
  vlba98::DateText6 six{};
  if (field.kind == Kind::Date) {
    const std::string_view given = vlba98::trimmed(text);
    const auto date = vlba98::parseDate(given);
    if (date) six = vlba98::toExternal6(*date);
    // Blanks are none, however many.
    if (date || (given.empty() && tooLong == TooLong::StaysSo)) text = six.data();
  }
  const size_t room = tooLong == TooLong::IsCut ? field.width - 1u : field.width;
  std::memset(to, 0, field.width);
  std::memcpy(to, text, strnlen(text, room));
}

void takeFields(Part part, void *into, FlatArguments arguments, TooLong tooLong) {
  for (const FlatArgument &argument : arguments) {
    const Field &field = fieldOf(argument);
    if (field.part != part) continue;
    char *to = static_cast<char *>(into) + field.offset;
    if (field.kind == Kind::Number)
      std::memcpy(to, &argument.number, sizeof argument.number);
    else
      putText(to, field, argument.text ? argument.text : "", tooLong);
  }
}

} // namespace

std::vector<Parameter> parametersOf(const ZELK_BUCHUNG &record) {
  std::vector<Parameter> parameters;
  parameters.reserve(std::size(kFields));
  for (const Field &field : kFields) {
    if (field.inSingle == kNowhere) continue;
    parameters.push_back(parameter(field, reinterpret_cast<const char *>(&record) + field.inSingle));
    // Never was in the entry of a single posting; and the split posting that this one becomes finds that one too long.
    parameters.back().printed = field.id != PostingField::Text2;
    parameters.back().checked = field.id != PostingField::DMSID;
  }
  return parameters;
}

std::vector<Parameter> parametersOf(const Posting &posting) {
  std::vector<Parameter> parameters;
  parameters.reserve(kHeadFields.size() + 1 + kLineFields.size() * posting.lines.size());
  addParameters(parameters, kHeadFields, posting.head);
  for (const PostingLine &line : posting.lines)
    addParameters(parameters, kLineFields, line);
  return parameters;
}

Parameter parameterOf(const FlatArgument &argument) {
  const Field &field = fieldOf(argument);
  const char *label = argument.label ? argument.label : field.label;
  return field.kind == Kind::Number ? frame::number(label, argument.number) : frame::text(label, argument.text);
}

Posting toPosting(const ZELK_BUCHUNG &record) {
  Posting posting;
  PostingLine line{};
  copyFields(posting.head, kHeadFields, record, &Field::inSingle);
  copyFields(line, kLineFields, record, &Field::inSingle);
  posting.add(line);
  return posting;
}

Posting toPosting(const ZELK_SPLITBUCHUNG &record) {
  Posting posting;
  copyFields(posting.head, kHeadFields, record, &Field::inSplit);
  posting.lines.resize(size_t(std::clamp(posting.head.Teilbuchungsanzahl, 0, kRecordLines)));
  for (size_t i = 0; i < posting.lines.size(); ++i)
    copyFields(posting.lines[i], kLineFields, record.Teilbuchung[i], &Field::inSplit);
  return posting;
}

Posting toPosting(FlatArguments arguments) {
  Posting posting;
  PostingLine line{};
  takeFields(Part::Head, &posting.head, arguments, TooLong::StaysSo);
  takeFields(Part::Line, &line, arguments, TooLong::StaysSo);
  posting.add(line);
  return posting;
}

void take(PostingHead &head, FlatArguments arguments) {
  takeFields(Part::Head, &head, arguments, TooLong::IsCut);
}
void take(PostingLine &line, FlatArguments arguments) {
  takeFields(Part::Line, &line, arguments, TooLong::IsCut);
}
void take(PostingOwnAmounts &amounts, FlatArguments arguments) {
  takeFields(Part::OwnAmounts, &amounts, arguments, TooLong::IsCut);
}
void take(PostingCost &cost, FlatArguments arguments) {
  takeFields(Part::Cost, &cost, arguments, TooLong::IsCut);
}

bool isDate(const char *text) {
  return vlba98::parseDate(vlba98::trimmed(text ? text : "")).has_value();
}

} // namespace postings
