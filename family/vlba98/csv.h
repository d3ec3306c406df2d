/// CSV files as people write them: semicolon, UTF-8, a header row.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vlba98 {

struct CsvRow {
  int line;                        ///< of the file where the row begins, from 1
  std::vector<std::string> values; ///< as many as there are columns, unless problem says otherwise
  std::string problem;             ///< German; empty when the row can be used
};

struct CsvFile {
  std::vector<std::string> columns;
  std::vector<CsvRow> rows;
  std::string problem; ///< of the file as a whole; then there are no rows

  /// The index of a column, -1 when there is none.
  int column(std::string_view name) const;
};

/// Reads a text. Separator ';', quotes "..." with "" for a quote in them, line ends LF or CR LF, also inside quotes; a
/// byte-order mark is passed over, and so are empty lines. A text that is not UTF-8 is a problem of the row that has
/// it.
CsvFile parseCsv(std::string_view text);

/// The same from a file. \param path UTF-8
CsvFile readCsv(const std::string &path);

} // namespace vlba98
