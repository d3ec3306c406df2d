#include <cstring>

#include "isam/isam_engine.h"
#include "isam/statements.h"

namespace vldb98 {

bool IsamEngine::bindRow(SqlStatement &statement, const Table &table, const char *record, int &parameter) {
  for (const Field &field : table.fields)
    if (!bindField(statement, parameter++, field, record, scratch_)) return false;
  return true;
}

int32_t IsamEngine::assignedNumber(const Table &table, const char *record) {
  int32_t number;
  std::memcpy(&number, record + table.fields[size_t(table.assigned)].offset, sizeof number);
  return number;
}

void IsamEngine::putAssignedNumber(const Table &table, char *record, int64_t value) {
  const auto number = int32_t(value);
  std::memcpy(record + table.fields[size_t(table.assigned)].offset, &number, sizeof number);
}

bool IsamEngine::execute(SqlStatement &statement) {
  // A step of several statements can lose its transaction among them, also while one of them is prepared.
  if (!beginChange()) return false;
  Execution execution(statement);
  const bool done = statement.step() == Step::Done;
  if (done && !inTransaction()) ++committedChanges;
  return done;
}

bool IsamEngine::change(ChangeOp op, FileNumber file, DATENBANK *record) {
  const Table *table = findTable(tableOf(file));
  if (!table || (op != ChangeOp::Delete && !record) || !beginChange()) return false;
  tableChanges(*table);
  return op == ChangeOp::Insert ? insert(*table, *record) : changeCurrent(op, *table, record);
}

template <class Work> bool IsamEngine::whole(bool needed, Work &&work) {
  const bool own = !inTransaction() && (needed || locks_->guardsChanges());
  if (own && !transaction(TransactionOp::Begin, false)) return false;
  const bool done = beginChange() && work();
  return (!own || transaction(done ? TransactionOp::Commit : TransactionOp::Rollback, false)) && done;
}

bool IsamEngine::insert(const Table &table, DATENBANK &record) {
  if (!inScope(table)) return false;
  const bool assigns = table.assigned >= 0 && assignedNumber(table, record.bytes) == 0;
  const DATENBANK before = record;
  // Reading the greatest number and inserting the next must be one step for other writers.
  const bool done =
      whole(assigns, [&] { return assigns ? insertAssigned(table, record) : writeRow(table, record.bytes); });
  if (done)
    makeCurrent(table, record.bytes);
  else
    record = before;
  return done;
}

bool IsamEngine::writeRow(const Table &table, const char *record) {
  TableState &state = stateOf(table);
  SqlStatement *statement = prepared(state.insert, state.insert ? std::string() : insertStatement(table));
  if (!statement) return false;
  int parameter = bindScope(*statement, table, 1);
  return bindRow(*statement, table, record, parameter) && execute(*statement);
}

bool IsamEngine::insertAll(FileNumber file, const char *records, size_t count) {
  const Table *table = findTable(tableOf(file));
  if (!table || table->assigned >= 0 || !inTransaction() || !inScope(*table) || !beginChange()) return false;
  tableChanges(*table);
  if (!insertRows(*table, records, count)) return false;
  if (count > 0) makeCurrent(*table, records + (count - 1) * table->recordSize);
  return true;
}

bool IsamEngine::insertRows(const Table &table, const char *records, size_t count) {
  for (size_t i = 0; i < count; ++i)
    if (!writeRow(table, records + i * table.recordSize)) return false;
  return true;
}

bool IsamEngine::insertAssigned(const Table &table, DATENBANK &record) {
  return assignNumber(table, record.bytes) && writeRow(table, record.bytes);
}

bool IsamEngine::assignNumber(const Table &table, char *record) {
  TableState &state = stateOf(table);
  SqlStatement *statement =
      prepared(state.greatest, state.greatest ? std::string() : greatestStatement(dialect_, table));
  if (!statement) return false;
  int parameter = bindScope(*statement, table, 1);
  if (!bindFields(*statement, table, fieldsBeforeAssigned(table), record, parameter)) return false;
  int64_t next = 0;
  {
    Execution execution(*statement);
    const Step step = statement->step();
    if (step == Step::Failed) return false;
    next = step == Step::Row ? statement->integer(0) + 1 : 1;
  }
  if (next > INT32_MAX) next = lowestFreeNumber(table, record);
  if (next < 1 || next > INT32_MAX) return false;
  putAssignedNumber(table, record, next);
  return true;
}

int64_t IsamEngine::lowestFreeNumber(const Table &table, const char *record) {
  TableState &state = stateOf(table);
  SqlStatement *statement = prepared(state.assigned, state.assigned ? std::string() : assignedStatement(table));
  if (!statement) return 0;
  int parameter = bindScope(*statement, table, 1);
  if (!bindFields(*statement, table, fieldsBeforeAssigned(table), record, parameter)) return 0;
  Execution execution(*statement);
  int64_t lowest = 1;
  Step step;
  while ((step = statement->step()) == Step::Row && statement->integer(0) <= lowest)
    if (statement->integer(0) == lowest) ++lowest;
  return step == Step::Failed ? 0 : lowest;
}

bool IsamEngine::changeCurrent(ChangeOp op, const Table &table, DATENBANK *record) {
  TableState &state = stateOf(table);
  if (state.current.empty()) return false;
  bool update = op == ChangeOp::Update;
  Statement &slot = update ? state.update : state.remove;
  SqlStatement *statement = prepared(slot, slot     ? std::string()
                                           : update ? updateStatement(table)
                                                    : deleteStatement(table, table.keys.front().fields));
  if (!statement) return false;
  int parameter = 1;
  scratch_.clear();
  if (update && !bindRow(*statement, table, record->bytes, parameter)) return false;
  parameter = bindScopeAfter(*statement, table, parameter);
  if (!bindFields(*statement, table, table.keys.front().fields, state.current.data(), parameter)) return false;
  // A record that somebody else deleted meanwhile cannot be changed.
  if (!whole(false, [&] { return execute(*statement) && connection_->changedRows() == 1; })) return false;
  if (update) makeCurrent(table, record->bytes);
  return true;
}

bool IsamEngine::deleteBeginning(FileNumber file, const SCHLUESSEL &values, int fields) {
  const Table *table = findTable(tableOf(file));
  const Key *key = table ? table->key(keyIndexOf(file)) : nullptr;
  if (!key || fields < 1 || size_t(fields) > key->fields.size() || !beginChange()) return false;
  tableChanges(*table);
  std::vector<int> leading(key->fields.begin(), key->fields.begin() + fields);
  Statement &slot = stateOf(*table).deletions[{key->index, fields}];
  SqlStatement *statement = prepared(slot, slot ? std::string() : deleteStatement(*table, leading));
  if (!statement) return false;
  bindKey(*statement, *table, leading, values, bindScope(*statement, *table, 1));
  return whole(false, [&] { return execute(*statement); });
}

bool IsamEngine::table(TableOp op, int number) {
  const Table *found = findTable(number);
  if (!found || !beginChange()) return false;
  tableChanges(*found);
  // What was changed before would be committed with it.
  if (op != TableOp::Clear && dialect_.tablesEndTransactions && inTransaction()) return false;
  switch (op) {
  case TableOp::Create:
    for (const std::string &statement : createStatements(dialect_, *found))
      if (!connection_->execute(statement)) return false;
    return true;
  case TableOp::Drop:
    return connection_->execute(dropStatement(*found));
  case TableOp::Clear:
    // It would be the rows of all clients.
    if (found->scope == Scope::Global) return false;
    break;
  }
  Statement &slot = stateOf(*found).clear;
  SqlStatement *statement = prepared(slot, slot ? std::string() : clearStatement(*found));
  if (!statement) return false;
  bindScope(*statement, *found, 1);
  return whole(false, [&] { return execute(*statement); });
}

bool IsamEngine::tableExists(int number, bool &exists) {
  const Table *table = findTable(number);
  exists = false;
  if (!table) return true;
  if (!begin()) return false;
  SqlStatement *statement = prepared(tableExists_, dialect_.tableExists);
  if (!statement) return false;
  statement->bind(1, table->name);
  Execution execution(*statement);
  Step step = statement->step();
  exists = step == Step::Row;
  return step != Step::Failed;
}

} // namespace vldb98
