#include "vlba98/csv.h"

#include <algorithm>

#include "platform/files.h"
#include "vlba98/encoding.h"
#include "vlba98/text.h"

namespace vlba98 {
namespace {

class Parser {
public:
  explicit Parser(std::string_view text) : rest_(text) {
    if (rest_.substr(0, 3) == "\xEF\xBB\xBF") rest_.remove_prefix(3);
  }

  bool atEnd() const { return rest_.empty(); }

  CsvRow row() {
    CsvRow row{line_, {}, {}};
    do
      row.values.push_back(value(row.problem));
    while (take(';'));
    take('\r');
    if (take('\n')) ++line_;
    return row;
  }

private:
  bool take(char c) {
    if (rest_.empty() || rest_.front() != c) return false;
    rest_.remove_prefix(1);
    return true;
  }

  std::string value(std::string &problem) {
    if (take('"')) return quoted(problem);
    size_t length = std::min(rest_.find_first_of(";\r\n"), rest_.size());
    std::string text(rest_.substr(0, length));
    rest_.remove_prefix(length);
    return text;
  }

  std::string quoted(std::string &problem) {
    std::string text;
    for (;;) {
      if (rest_.empty()) {
        problem = "Ein Anführungszeichen wird nicht geschlossen.";
        return text;
      }
      char c = rest_.front();
      rest_.remove_prefix(1);
      if (c == '\n') ++line_;
      if (c == '"' && !take('"')) break;
      text += c;
    }
    size_t garbage = std::min(rest_.find_first_of(";\r\n"), rest_.size());
    if (garbage > 0) problem = "Hinter einem Anführungszeichen steht weiterer Text.";
    rest_.remove_prefix(garbage);
    return text;
  }

  std::string_view rest_;
  int line_ = 1;
};

bool isEmptyLine(const CsvRow &row) {
  return row.values.size() == 1 && row.values.front().empty() && row.problem.empty();
}

void check(CsvRow &row, size_t columns) {
  if (!row.problem.empty()) return;
  if (row.values.size() != columns)
    row.problem = "Die Zeile hat " + counted(row.values.size(), "Feld", "Felder") + ", die Kopfzeile " +
                  std::to_string(columns) + ".";
  for (const std::string &value : row.values)
    if (!toWindows1252(value)) {
      row.problem = "Ein Feld ist kein UTF-8 oder hat ein Zeichen, das es in Windows-1252 nicht gibt.";
      return;
    }
}

} // namespace

int CsvFile::column(std::string_view name) const {
  auto it = std::find(columns.begin(), columns.end(), name);
  return it == columns.end() ? -1 : int(it - columns.begin());
}

CsvFile parseCsv(std::string_view text) {
  CsvFile file;
  Parser parser(text);
  if (parser.atEnd()) {
    file.problem = "Die Datei ist leer.";
    return file;
  }
  CsvRow header = parser.row();
  check(header, header.values.size());
  if (!header.problem.empty()) file.problem = "Zeile 1: " + header.problem;
  file.columns = header.values;
  for (size_t i = 0; i < file.columns.size() && file.problem.empty(); ++i)
    if (file.column(file.columns[i]) != int(i))
      file.problem = "Die Spalte \"" + file.columns[i] + "\" kommt zweimal vor.";
  while (file.problem.empty() && !parser.atEnd()) {
    CsvRow row = parser.row();
    if (isEmptyLine(row)) continue;
    check(row, file.columns.size());
    file.rows.push_back(std::move(row));
  }
  return file;
}

CsvFile readCsv(const std::string &path) {
  if (auto content = platform::readFile(path)) return parseCsv(*content);
  CsvFile missing;
  missing.problem = "Die Datei kann nicht gelesen werden.";
  return missing;
}

} // namespace vlba98
