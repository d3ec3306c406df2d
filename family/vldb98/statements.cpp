#include "vldb98/statements.h"

#include "vldb98/rows.h"

namespace vldb98 {
namespace {

using Names = std::vector<std::string>;

std::string quoted(const std::string &name) {
  return '"' + name + '"';
}

std::string joined(const Names &names, const char *separator, const char *behindEach = "") {
  std::string text;
  for (const std::string &name : names)
    text += (text.empty() ? "" : separator) + name + behindEach;
  return text;
}

Names columns(const Table &table, const std::vector<int> &fields) {
  Names names;
  for (int field : fields)
    names.push_back(quoted(table.fields[size_t(field)].name));
  return names;
}

Names allColumns(const Table &table) {
  Names names;
  for (const Field &field : table.fields)
    names.push_back(quoted(field.name));
  return names;
}

// One comparison of rows, which the engine turns into one seek of the index.
std::string compared(const Names &names, const char *comparison) {
  Names marks(names.size(), "?");
  return "(" + joined(names, ",") + ")" + comparison + "(" + joined(marks, ",") + ")";
}

std::string where(const Names &conditions) {
  return conditions.empty() ? "" : " WHERE " + joined(conditions, " AND ");
}

Names equalities(const Names &names) {
  Names conditions;
  for (const std::string &name : names)
    conditions.push_back(name + "=?");
  return conditions;
}

void append(Names &to, const Names &more) {
  to.insert(to.end(), more.begin(), more.end());
}

Names rowConditions(const Table &table, const std::vector<int> &fields) {
  Names conditions = equalities(scopeColumns(table));
  append(conditions, equalities(columns(table, fields)));
  return conditions;
}

} // namespace

Names scopeColumns(const Table &table) {
  if (table.scope == Scope::Global) return {};
  if (table.scope == Scope::Client) return {quoted("Mandant")};
  return {quoted("Mandant"), quoted("Jahr")};
}

Names createStatements(const Table &table) {
  Names lines;
  for (const std::string &column : scopeColumns(table))
    lines.push_back(column + " INTEGER NOT NULL");
  for (const Field &field : table.fields) {
    bool nullable = field.type == FieldType::Money || field.type == FieldType::Year;
    lines.push_back(quoted(field.name) + " " + columnType(field.type) + (nullable ? "" : " NOT NULL"));
  }
  Names primary = scopeColumns(table);
  append(primary, columns(table, table.keys.front().fields));
  lines.push_back("PRIMARY KEY (" + joined(primary, ",") + ")");
  Names statements{"CREATE TABLE IF NOT EXISTS " + quoted(table.name) + " (" + joined(lines, ",") +
                   ") STRICT, WITHOUT ROWID"};
  for (size_t i = 1; i < table.keys.size(); ++i) {
    const Key &key = table.keys[i];
    Names ordered = scopeColumns(table);
    append(ordered, columns(table, key.totalOrder));
    statements.push_back(std::string("CREATE ") + (key.unique ? "UNIQUE " : "") + "INDEX IF NOT EXISTS " +
                         quoted(table.name + "_" + std::to_string(key.index)) + " ON " + quoted(table.name) + " (" +
                         joined(ordered, ",") + ")");
  }
  return statements;
}

std::string dropStatement(const Table &table) {
  return "DROP TABLE IF EXISTS " + quoted(table.name);
}

std::string clearStatement(const Table &table) {
  return "DELETE FROM " + quoted(table.name) + where(equalities(scopeColumns(table)));
}

std::string selectStatement(const Table &table, const Key &key, ReadOp op, bool bounded) {
  Names conditions = equalities(scopeColumns(table));
  Names keyColumns = columns(table, key.fields);
  Names order = columns(table, key.totalOrder);
  switch (op) {
  case ReadOp::Ge:
    conditions.push_back(compared(keyColumns, ">="));
    break;
  case ReadOp::Le:
    conditions.push_back(compared(keyColumns, "<="));
    break;
  case ReadOp::Range:
    conditions.push_back(compared(keyColumns, ">="));
    conditions.push_back(compared(keyColumns, "<="));
    break;
  case ReadOp::Next:
  case ReadOp::StepNext:
    conditions.push_back(compared(order, ">"));
    break;
  case ReadOp::Prev:
    conditions.push_back(compared(order, "<"));
    break;
  case ReadOp::Exact:
  case ReadOp::Exists:
    append(conditions, equalities(keyColumns));
    break;
  case ReadOp::First:
  case ReadOp::Last:
  case ReadOp::StepFirst:
    break;
  }
  if (bounded) conditions.push_back(compared(keyColumns, "<="));
  bool descending = op == ReadOp::Last || op == ReadOp::Le || op == ReadOp::Prev;
  return "SELECT " + (op == ReadOp::Exists ? "1" : joined(allColumns(table), ",")) + " FROM " + quoted(table.name) +
         where(conditions) + " ORDER BY " + joined(order, ",", descending ? " DESC" : "") + " LIMIT 1";
}

std::string sumStatement(const Table &table, const Key &key, const std::vector<int> &fields) {
  Names sums;
  for (const std::string &column : columns(table, fields))
    sums.push_back("COALESCE(SUM(" + column + "),0)");
  std::vector<int> leading(key.fields.begin(), key.fields.end() - 1);
  Names conditions = rowConditions(table, leading);
  const std::string last = columns(table, {key.fields.back()}).front();
  conditions.push_back(last + ">=?");
  conditions.push_back(last + "<=?");
  return "SELECT " + joined(sums, ",") + " FROM " + quoted(table.name) + where(conditions);
}

std::string insertStatement(const Table &table) {
  Names names = scopeColumns(table);
  append(names, allColumns(table));
  return "INSERT INTO " + quoted(table.name) + " (" + joined(names, ",") + ") VALUES (" +
         joined(Names(names.size(), "?"), ",") + ")";
}

std::string updateStatement(const Table &table) {
  return "UPDATE " + quoted(table.name) + " SET " + joined(equalities(allColumns(table)), ",") +
         where(rowConditions(table, table.keys.front().fields));
}

std::string deleteStatement(const Table &table, const std::vector<int> &fields) {
  return "DELETE FROM " + quoted(table.name) + where(rowConditions(table, fields));
}

std::string greatestStatement(const Table &table) {
  Names conditions = equalities(scopeColumns(table));
  for (int field : table.keys.front().fields) {
    if (field == table.assigned) break;
    append(conditions, equalities(columns(table, {field})));
  }
  std::string assigned = columns(table, {table.assigned}).front();
  return "SELECT " + assigned + " FROM " + quoted(table.name) + where(conditions) + " ORDER BY " + assigned +
         " DESC LIMIT 1";
}

} // namespace vldb98
