/// The text of every statement, made from the schema in the SQL of an engine.
#pragma once

#include <string>
#include <vector>

#include "isam/engine.h"
#include "records/schema.h"
#include "sql/dialect.h"

namespace vldb98 {

/// Columns that lead every row: the client, and the fiscal year where the table has one.
std::vector<std::string> scopeColumns(const Table &table);

/// The primary key's fields within which the assigned one counts.
std::vector<int> fieldsBeforeAssigned(const Table &table);

/// The tables' creation, indexes included; does nothing where they exist.
std::vector<std::string> createStatements(const Dialect &dialect, const Table &table);

std::string dropStatement(const Table &table);
std::string clearStatement(const Table &table);

/// A read that delivers all fields in the order of the schema (Exists: nothing). Parameters: the scope, then what the
/// operation compares with: the key's fields (Ge, Le, Exact, Exists), twice for Range; the total order's (Next, Prev).
/// Next with a bound takes the key's fields of the upper key after that. \param forUpdate nobody else writes the row
/// until the end of the transaction \param rows at most \param inFront parameters of the text that it is put into
std::string selectStatement(const Dialect &dialect, const Table &table, const Key &key, ReadOp op, bool bounded = false,
                            bool forUpdate = false, int rows = 1, size_t inFront = 0);

/// What a look-up asks for, its key's values aside.
struct LookUpForm {
  const Table *table;
  const Key *key;
  ReadOp op; ///< Exact, Ge or Le; Exists by a unique key
};
/// Several look-ups in one row: of each all fields, of Exists the first field of the primary key. Where there is no
/// record they are NULL, the primary key's too. Parameters: of each the scope and the key's fields.
std::string lookUpsStatement(const Dialect &dialect, const std::vector<LookUpForm> &lookUps);

/// The sums of fields over what lies between two keys that differ in their last field. Parameters: the scope, the lower
/// key's fields, the last field of the upper key.
std::string sumStatement(const Table &table, const Key &key, const std::vector<int> &fields);

/// Parameters: of each row the scope, then all fields.
std::string insertStatement(const Table &table, size_t rows = 1);
/// Inserts with the number after the greatest one in the assigned field, and delivers it. Parameters: the scope, all
/// other fields, then what greatestStatement takes.
std::string insertNumberedStatement(const Dialect &dialect, const Table &table);
/// Parameters: all fields, the scope, then the primary key's fields.
std::string updateStatement(const Table &table);
/// Of all records with certain values. Parameters: the scope, then the fields.
std::string deleteStatement(const Table &table, const std::vector<int> &fields);
/// The greatest value of the assigned field. Parameters: the scope, then the primary key's fields before it.
std::string greatestStatement(const Dialect &dialect, const Table &table);
/// All its values in ascending order. Parameters as above.
std::string assignedStatement(const Table &table);

} // namespace vldb98
