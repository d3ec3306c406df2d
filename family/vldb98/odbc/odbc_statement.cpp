#include "odbc/odbc_statement.h"

#include <algorithm>
#include <cctype>
#include <cstring>

namespace vldb98::odbc {
namespace {

constexpr SQLULEN kLongestText = 4000; // of a column, in UTF-16 units; no text of the books comes near it

bool isTextType(SQLSMALLINT type) {
  switch (type) {
  case SQL_CHAR:
  case SQL_VARCHAR:
  case SQL_LONGVARCHAR:
  case SQL_WCHAR:
  case SQL_WVARCHAR:
  case SQL_WLONGVARCHAR:
    return true;
  default:
    return false;
  }
}

} // namespace

MarkedText markedText(const std::string &sql) {
  MarkedText marked;
  std::string text;
  size_t greatest = 0;
  for (size_t i = 0; i < sql.size(); ++i) {
    text += sql[i];
    if (sql[i] != '?') continue;
    size_t number = 0;
    for (; i + 1 < sql.size() && std::isdigit(static_cast<unsigned char>(sql[i + 1])); ++i)
      number = number * 10 + size_t(sql[i + 1] - '0');
    if (number == 0) number = greatest + 1;
    greatest = std::max(greatest, number);
    marked.marks.push_back(number - 1);
  }
  appendUtf16(marked.text, text);
  return marked;
}

OdbcStatement::OdbcStatement(Session &session, StatementHandle handle, MarkedText marked)
    : session_(session), handle_(std::move(handle)), marked_(std::move(marked)) {
  const auto &marks = marked_.marks;
  parameters_.resize(marks.empty() ? 0 : *std::max_element(marks.begin(), marks.end()) + 1);
}

OdbcStatement::Parameter &OdbcStatement::parameter(int number) {
  return parameters_.at(size_t(number - 1));
}

void OdbcStatement::bind(int number, int64_t value) {
  Parameter &p = parameter(number);
  if (p.isText) p.bound = false;
  p.isText = false;
  p.number = value;
  p.length = 0;
}

void OdbcStatement::bind(int number, std::string_view utf8) {
  Parameter &p = parameter(number);
  if (!p.isText) p.bound = false;
  p.isText = true;
  if (session_.takesUtf8()) {
    p.text = utf8;
  } else {
    std::u16string units;
    appendUtf16(units, utf8);
    p.text.assign(reinterpret_cast<const char *>(units.data()), units.size() * sizeof(char16_t));
  }
  p.length = SQLLEN(p.text.size());
  if (p.text.data() != p.place) p.bound = false;
}

void OdbcStatement::bindNull(int number) {
  parameter(number).length = SQL_NULL_DATA;
}

bool OdbcStatement::bindParameters() {
  for (size_t mark = 0; mark < marked_.marks.size(); ++mark) {
    Parameter &p = parameters_[marked_.marks[mark]];
    if (p.bound) continue;
    SQLRETURN done;
    if (p.isText)
      done = SQLBindParameter(
          handle_.get(), SQLUSMALLINT(mark + 1), SQL_PARAM_INPUT, session_.takesUtf8() ? SQL_C_CHAR : SQL_C_WCHAR,
          session_.takesUtf8() ? SQL_VARCHAR : SQL_WVARCHAR, SQLULEN(std::max<size_t>(p.text.capacity(), 1)), 0,
          p.text.data(), SQLLEN(p.text.capacity() + 1), &p.length);
    else
      done = SQLBindParameter(handle_.get(), SQLUSMALLINT(mark + 1), SQL_PARAM_INPUT, SQL_C_SBIGINT, SQL_BIGINT, 0, 0,
                              &p.number, sizeof p.number, &p.length);
    if (!SQL_SUCCEEDED(done)) return false;
  }
  for (Parameter &p : parameters_) {
    p.bound = true;
    p.place = p.text.data();
  }
  return true;
}

// After the first execution, since a server tells of some batches only then what they deliver.
bool OdbcStatement::bindColumns() {
  SQLSMALLINT count = 0;
  if (!SQL_SUCCEEDED(SQLNumResultCols(handle_.get(), &count))) return false;
  columns_.resize(size_t(count));
  for (size_t i = 0; i < columns_.size(); ++i) {
    Column &column = columns_[i];
    const auto number = SQLUSMALLINT(i + 1);
    SQLSMALLINT type = 0, decimals = 0, nullable = 0, nameLength = 0;
    SQLULEN size = 0;
    char16_t name[2];
    if (!SQL_SUCCEEDED(
            SQLDescribeColW(handle_.get(), number, wide(name), 2, &nameLength, &type, &size, &decimals, &nullable)))
      return false;
    column.isText = isTextType(type);
    SQLRETURN done;
    if (column.isText) {
      if (size == 0 || size > kLongestText) size = kLongestText;
      // Four bytes in both encodings are a character at most; the terminator.
      column.text.resize(4 * size + sizeof(char16_t));
      done = SQLBindCol(handle_.get(), number, session_.takesUtf8() ? SQL_C_CHAR : SQL_C_WCHAR, column.text.data(),
                        SQLLEN(column.text.size()), &column.length);
    } else {
      done = SQLBindCol(handle_.get(), number, SQL_C_SBIGINT, &column.number, sizeof column.number, &column.length);
    }
    if (!SQL_SUCCEEDED(done)) return false;
  }
  columnsBound_ = true;
  return true;
}

// The driver for MariaDB waits forever when a statement is run again of which the last execution broke off among its
// rows, as at a deadlock. So it is given up, and prepared anew when it is used again.
Step OdbcStatement::fail() {
  if (handle_) session_.failed(handle_);
  open_ = columnsBound_ = false;
  for (Parameter &p : parameters_)
    p.bound = false;
  return Step::Failed;
}

Step OdbcStatement::step() {
  if (!session_.alive()) return Step::Failed;
  if (!open_) {
    if (!handle_) handle_ = session_.prepared(marked_.text);
    if (!handle_ || !bindParameters()) return fail();
    session_.sent();
    const SQLRETURN done = SQLExecute(handle_.get());
    // An update or delete that met no row.
    if (done != SQL_NO_DATA && !SQL_SUCCEEDED(done)) return fail();
    open_ = true;
    if (!columnsBound_ && !bindColumns()) return fail();
    if (columns_.empty()) {
      SQLLEN rows = 0;
      if (done != SQL_NO_DATA && !SQL_SUCCEEDED(SQLRowCount(handle_.get(), &rows))) return fail();
      session_.succeeded(rows);
      return Step::Done;
    }
  }
  const SQLRETURN fetched = SQLFetch(handle_.get());
  if (fetched == SQL_NO_DATA) return Step::Done;
  return SQL_SUCCEEDED(fetched) ? Step::Row : fail();
}

void OdbcStatement::reset() {
  if (open_) SQLFreeStmt(handle_.get(), SQL_CLOSE);
  open_ = false;
}

bool OdbcStatement::isNull(int column) {
  return columns_.at(size_t(column)).length == SQL_NULL_DATA;
}

int64_t OdbcStatement::integer(int column) {
  return isNull(column) ? 0 : columns_[size_t(column)].number;
}

std::string_view OdbcStatement::text(int number) {
  Column &column = columns_.at(size_t(number));
  if (!column.isText || column.length <= 0) return {};
  const size_t bytes = std::min(size_t(column.length), column.text.size() - sizeof(char16_t));
  if (session_.takesUtf8()) return {column.text.data(), bytes};
  std::u16string units(bytes / sizeof(char16_t), u' ');
  std::memcpy(units.data(), column.text.data(), units.size() * sizeof(char16_t));
  column.utf8.clear();
  appendUtf8(column.utf8, units.data(), units.size());
  return column.utf8;
}

} // namespace vldb98::odbc
