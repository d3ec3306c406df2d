#include "isam/statements.h"

#include "sql/sql_text.h"

namespace vldb98 {
namespace {

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

// Compares the columns with as many parameters from the given one on, as one row. Where the engine seeks such a
// comparison it stands as it is; else as the alternatives that it consists of, each of which is a range of the index,
// after a bound of the first column for servers that seek no alternatives.
std::string compared(const Dialect &dialect, const Names &names, const std::string &comparison, size_t parameter) {
  if (dialect.comparesRows)
    return "(" + joined(names, ",") + ")" + comparison + "(" + joined(Names(names.size(), "?"), ",") + ")";
  const std::string beyond = comparison.substr(0, 1);
  auto term = [&](size_t i, const std::string &sign) { return names[i] + sign + "?" + std::to_string(parameter + i); };
  if (names.size() == 1) return term(0, comparison);
  Names alternatives;
  for (size_t last = 0; last < names.size(); ++last) {
    Names terms;
    for (size_t i = 0; i < last; ++i)
      terms.push_back(term(i, "="));
    terms.push_back(term(last, last + 1 == names.size() ? comparison : beyond));
    alternatives.push_back("(" + joined(terms, " AND ") + ")");
  }
  return term(0, beyond + "=") + " AND (" + joined(alternatives, " OR ") + ")";
}

std::string indexName(const Table &table, const Key &key) {
  return quoted(table.name + "_" + std::to_string(key.index));
}

std::string usedIndex(const Dialect &dialect, const Table &table, const Key &key) {
  if (!dialect.useIndex) return "";
  return filledIn(dialect.useIndex, "%s", key.index == 0 ? dialect.primaryIndex : indexName(table, key));
}

// The table that a read of rows goes to, and its end.
std::string from(const Dialect &dialect, const Table &table, const Key &key, bool forUpdate) {
  return " FROM " + quoted(table.name) + usedIndex(dialect, table, key) + (forUpdate ? dialect.forUpdateAtTable : "");
}
std::string atMost(const Dialect &dialect, int rows, bool forUpdate) {
  return filledIn(dialect.rowsBehind, "%d", std::to_string(rows)) + (forUpdate ? dialect.forUpdateBehind : "");
}

Names rowConditions(const Table &table, const std::vector<int> &fields) {
  Names conditions = equalities(scopeColumns(table));
  append(conditions, equalities(columns(table, fields)));
  return conditions;
}

std::string columnType(const Dialect &dialect, const Field &field) {
  constexpr int kIsoDate = 10;
  switch (field.type) {
  case FieldType::Money:
    return dialect.money;
  case FieldType::Year:
    return dialect.year;
  case FieldType::Date:
    return filledIn(dialect.text, "%d", std::to_string(kIsoDate));
  case FieldType::Text:
  case FieldType::KeyText:
    return filledIn(dialect.text, "%d", std::to_string((field.size - 1) * dialect.textBytesPerCharacter));
  default:
    return dialect.integers[size_t(field.type)];
  }
}

} // namespace

std::vector<int> fieldsBeforeAssigned(const Table &table) {
  std::vector<int> fields;
  for (int field : table.keys.front().fields) {
    if (field == table.assigned) break;
    fields.push_back(field);
  }
  return fields;
}

Names scopeColumns(const Table &table) {
  if (table.scope == Scope::Global) return {};
  if (table.scope == Scope::Client) return {quoted("Mandant")};
  return {quoted("Mandant"), quoted("Jahr")};
}

Names createStatements(const Dialect &dialect, const Table &table) {
  Names lines, indexes;
  for (const std::string &column : scopeColumns(table))
    lines.push_back(column + " " + dialect.integers[size_t(FieldType::UInt16)] + " NOT NULL");
  for (const Field &field : table.fields) {
    bool nullable = field.type == FieldType::Money || field.type == FieldType::Year;
    lines.push_back(quoted(field.name) + " " + columnType(dialect, field) + (nullable ? "" : " NOT NULL"));
  }
  Names primary = scopeColumns(table);
  append(primary, columns(table, table.keys.front().fields));
  lines.push_back("PRIMARY KEY (" + joined(primary, ",") + ")");
  for (size_t i = 1; i < table.keys.size(); ++i) {
    const Key &key = table.keys[i];
    if (key.onServersOnly && dialect.engine == ZELK_ENG_BTRIEVE) continue;
    Names ordered = scopeColumns(table);
    append(ordered, columns(table, key.totalOrder));
    const std::string inBrackets = " (" + joined(ordered, ",") + ")";
    if (dialect.indexesInside)
      lines.push_back(filledIn(key.unique ? dialect.uniqueIndex : dialect.index, "%s", indexName(table, key)) +
                      inBrackets);
    else
      indexes.push_back(std::string("CREATE ") + (key.unique ? "UNIQUE " : "") + "INDEX IF NOT EXISTS " +
                        indexName(table, key) + " ON " + quoted(table.name) + inBrackets);
  }
  Names statements{filledIn(dialect.createInFront, "%s", table.name) + quoted(table.name) + " (" + joined(lines, ",") +
                   ")" + dialect.createBehind};
  append(statements, indexes);
  return statements;
}

std::string dropStatement(const Table &table) {
  return "DROP TABLE IF EXISTS " + quoted(table.name);
}

std::string clearStatement(const Table &table) {
  return "DELETE FROM " + quoted(table.name) + where(equalities(scopeColumns(table)));
}

std::string selectStatement(const Dialect &dialect, const Table &table, const Key &key, ReadOp op, bool bounded,
                            bool forUpdate, int rows, size_t inFront) {
  Names conditions = equalities(scopeColumns(table));
  const size_t parameter = inFront + conditions.size() + 1;
  Names keyColumns = columns(table, key.fields);
  Names order = columns(table, key.totalOrder);
  auto compare = [&](const Names &names, const char *comparison, size_t offset = 0) {
    return compared(dialect, names, comparison, parameter + offset);
  };
  switch (op) {
  case ReadOp::Ge:
    conditions.push_back(compare(keyColumns, ">="));
    break;
  case ReadOp::Le:
    conditions.push_back(compare(keyColumns, "<="));
    break;
  case ReadOp::Range:
    conditions.push_back(compare(keyColumns, ">="));
    conditions.push_back(compare(keyColumns, "<=", keyColumns.size()));
    break;
  case ReadOp::Next:
  case ReadOp::StepNext:
    conditions.push_back(compare(order, ">"));
    break;
  case ReadOp::Prev:
    conditions.push_back(compare(order, "<"));
    break;
  case ReadOp::Exact:
  case ReadOp::Exists:
    append(conditions, equalities(keyColumns));
    // What is the same in all of them: MariaDB sorts them if it is asked to order by a parameter's column.
    if (!dialect.comparesRows) order.erase(order.begin(), order.begin() + std::ptrdiff_t(keyColumns.size()));
    break;
  case ReadOp::First:
  case ReadOp::Last:
  case ReadOp::StepFirst:
    break;
  }
  if (bounded) conditions.push_back(compare(keyColumns, "<=", order.size()));
  bool descending = op == ReadOp::Last || op == ReadOp::Le || op == ReadOp::Prev;
  return "SELECT " + filledIn(dialect.rowsInFront, "%d", std::to_string(rows)) +
         (op == ReadOp::Exists ? "1" : joined(allColumns(table), ",")) + from(dialect, table, key, forUpdate) +
         where(conditions) + (order.empty() ? "" : " ORDER BY " + joined(order, ",", descending ? " DESC" : "")) +
         atMost(dialect, rows, forUpdate);
}

std::string lookUpsStatement(const Dialect &dialect, const std::vector<LookUpForm> &lookUps) {
  std::string delivered, joins;
  size_t parameters = 0;
  for (size_t i = 0; i < lookUps.size(); ++i) {
    const auto &[table, key, op] = lookUps[i];
    const std::string alias = quoted("t" + std::to_string(i));
    auto aliased = [&](const Names &names) {
      Names all;
      for (const std::string &name : names)
        all.push_back(alias + "." + name);
      return all;
    };
    const Names fields =
        op == ReadOp::Exists ? columns(*table, {table->keys.front().fields.front()}) : allColumns(*table);
    delivered += (i ? "," : "") + joined(aliased(fields), ",");
    if (op == ReadOp::Le || op == ReadOp::Ge || !key->unique) {
      joins += " LEFT JOIN (" + selectStatement(dialect, *table, *key, op, false, false, 1, parameters) + ") AS " +
               alias + " ON 1=1";
    } else {
      Names compared = scopeColumns(*table);
      append(compared, columns(*table, key->fields));
      joins += " LEFT JOIN " + quoted(table->name) + " AS " + alias + usedIndex(dialect, *table, *key) + " ON " +
               joined(equalities(aliased(compared)), " AND ");
    }
    parameters += scopeColumns(*table).size() + key->fields.size();
  }
  return "SELECT " + delivered + " FROM (SELECT 1 AS one) AS one" + joins;
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

std::string insertStatement(const Table &table, size_t rows) {
  Names names = scopeColumns(table);
  append(names, allColumns(table));
  const std::string row = "(" + joined(Names(names.size(), "?"), ",") + ")";
  return "INSERT INTO " + quoted(table.name) + " (" + joined(names, ",") + ") VALUES " + joined(Names(rows, row), ",");
}

std::string insertNumberedStatement(const Dialect &dialect, const Table &table) {
  Names names = scopeColumns(table);
  append(names, allColumns(table));
  const std::string assigned = columns(table, {table.assigned}).front();
  Names values(names.size(), "?");
  values[scopeColumns(table).size() + size_t(table.assigned)] = "COALESCE(MAX(" + assigned + "),0)+1";
  return "INSERT INTO " + quoted(table.name) + " (" + joined(names, ",") + ") SELECT " + joined(values, ",") +
         from(dialect, table, table.keys.front(), false) + where(rowConditions(table, fieldsBeforeAssigned(table))) +
         " RETURNING " + assigned;
}

std::string updateStatement(const Table &table) {
  return "UPDATE " + quoted(table.name) + " SET " + joined(equalities(allColumns(table)), ",") +
         where(rowConditions(table, table.keys.front().fields));
}

std::string deleteStatement(const Table &table, const std::vector<int> &fields) {
  return "DELETE FROM " + quoted(table.name) + where(rowConditions(table, fields));
}

std::string greatestStatement(const Dialect &dialect, const Table &table) {
  std::string assigned = columns(table, {table.assigned}).front();
  return "SELECT " + filledIn(dialect.rowsInFront, "%d", "1") + assigned +
         from(dialect, table, table.keys.front(), true) + where(rowConditions(table, fieldsBeforeAssigned(table))) +
         " ORDER BY " + assigned + " DESC" + atMost(dialect, 1, true);
}

std::string assignedStatement(const Table &table) {
  std::string assigned = columns(table, {table.assigned}).front();
  return "SELECT " + assigned + " FROM " + quoted(table.name) +
         where(rowConditions(table, fieldsBeforeAssigned(table))) + " ORDER BY " + assigned;
}

} // namespace vldb98
