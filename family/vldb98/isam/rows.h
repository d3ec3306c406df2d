/// Records and keys on their way between the buffers and the columns of a statement.
///
/// Columns are typed so that any SQL tool can read the books: money and rates as integers in hundredths, dates in
/// ISO 8601, years as calendar years, texts as UTF-8 without padding. An empty amount, rate or year is NULL, an empty
/// date or text the empty text.
#pragma once

#include <cstddef>
#include <string_view>

#include "records/keys.h"
#include "records/schema.h"
#include "sql/sql.h"

namespace vldb98 {

/// Holds the texts of a statement's parameters from the bind to the end of the step.
class Scratch {
public:
  void clear() { used_ = 0; }
  char *take(size_t size);
  void giveBack(size_t unused) { used_ -= unused; }

private:
  char bytes_[4 * sizeof(DATENBANK)];
  size_t used_ = 0;
};

/// Binds a field of a record. \return false when the record holds what the field cannot mean (a text without its end,
/// an amount that is none, a date that is no calendar day)
bool bindField(SqlStatement &statement, int parameter, const Field &field, const char *record, Scratch &scratch);

/// Binds a field of a key buffer that stands at the given bytes.
void bindKeyField(SqlStatement &statement, int parameter, const Field &field, const char *bytes, Scratch &scratch);

/// Reads the columns from one on into a record, all of its table's fields. \return false when a field cannot hold its
/// column
bool readRecord(SqlStatement &statement, int column, const Table &table, char *record);

} // namespace vldb98
