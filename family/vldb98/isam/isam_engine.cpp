#include "isam/isam_engine.h"

#include <cstring>
#include <utility>

#include "isam/statements.h"

namespace vldb98 {
namespace {

bool takesKey(ReadOp op) {
  return op >= ReadOp::Ge && op != ReadOp::StepFirst && op != ReadOp::StepNext;
}
bool steps(ReadOp op) {
  return op == ReadOp::Next || op == ReadOp::Prev || op == ReadOp::StepNext;
}

int32_t numberAt(const Field &field, const char *record) {
  int32_t value;
  std::memcpy(&value, record + field.offset, sizeof value);
  return value;
}

} // namespace

IsamEngine::IsamEngine(std::unique_ptr<SqlConnection> connection, std::unique_ptr<Locks> locks)
    : connection_(std::move(connection)), dialect_(connection_->dialect()), locks_(std::move(locks)) {}

IsamEngine::~IsamEngine() {
  if (depth_ > 0 && connection_->inTransaction()) connection_->rollback();
}

void IsamEngine::setScope(uint16_t client, int year) {
  if (client == client_ && year == year_) return;
  kept_.clear();
  forgetBlocks();
  for (const Table &table : allTables()) {
    bool concerned =
        table.scope != Scope::Global && (client != client_ || (table.scope == Scope::FiscalYear && year != year_));
    if (!concerned) continue;
    tables_[size_t(table.number)].current.clear();
    tables_[size_t(table.number)].rangeKey = -1;
  }
  client_ = client;
  year_ = year;
}

SqlStatement *IsamEngine::prepared(Statement &statement, const std::string &text) {
  if (!statement) statement = connection_->prepare(text);
  return statement.get();
}

SqlStatement *IsamEngine::readStatement(const Table &table, const Key &key, ReadOp op, bool bounded) {
  const bool forUpdate = keepsRows() && op != ReadOp::Exists;
  const size_t which = bounded ? kReadOps : size_t(op);
  Statement &slot = tables_[size_t(table.number)].reads[key.index][which + (forUpdate ? kReadOps + 1 : 0)];
  return slot ? slot.get() : prepared(slot, selectStatement(dialect_, table, key, op, bounded, forUpdate));
}

int IsamEngine::bindScope(SqlStatement &statement, const Table &table, int parameter) {
  scratch_.clear();
  return bindScopeBehind(statement, table, parameter);
}

int IsamEngine::bindScopeBehind(SqlStatement &statement, const Table &table, int parameter) {
  if (table.scope != Scope::Global) statement.bind(parameter++, int64_t(client_));
  if (table.scope == Scope::FiscalYear) statement.bind(parameter++, int64_t(year_));
  return parameter;
}

int IsamEngine::bindKey(SqlStatement &statement, const Table &table, const std::vector<int> &fields,
                        const SCHLUESSEL &values, int parameter) {
  const char *at = values.bytes;
  for (int index : fields) {
    const Field &field = table.fields[size_t(index)];
    bindKeyField(statement, parameter++, field, at, scratch_);
    at += field.keyWidth();
  }
  return parameter;
}

bool IsamEngine::bindFields(SqlStatement &statement, const Table &table, const std::vector<int> &fields,
                            const char *record, int &parameter) {
  for (int index : fields)
    if (!bindField(statement, parameter++, table.fields[size_t(index)], record, scratch_)) return false;
  return true;
}

bool IsamEngine::bindRow(SqlStatement &statement, const Table &table, const char *record, int &parameter) {
  for (const Field &field : table.fields)
    if (!bindField(statement, parameter++, field, record, scratch_)) return false;
  return true;
}

bool IsamEngine::read(ReadOp op, FileNumber file, const SCHLUESSEL *key, const SCHLUESSEL *upper, DATENBANK *record,
                      bool &found) {
  found = false;
  const Table *table = findTable(tableOf(file));
  bool physical = op == ReadOp::StepFirst || op == ReadOp::StepNext;
  const Key *order = table ? table->key(physical ? 0 : keyIndexOf(file)) : nullptr;
  if (!order || (takesKey(op) && !key) || (op == ReadOp::Range && !upper)) return false;
  TableState &state = tables_[size_t(table->number)];
  if (steps(op) && state.current.empty()) return true;
  const bool bounded = op == ReadOp::Next && state.rangeKey == order->index;
  if (bounded && state.rangeEmpty) return true;
  if (!kept_.empty() && takesKey(op))
    if (const KeptReads::Answer *answer = kept(op, file, *key)) {
      found = answer->found;
      if (op == ReadOp::Exists) return true;
      state.rangeKey = -1;
      if (!found) return true;
      std::memcpy(record->bytes, answer->record.data(), table->recordSize);
      state.current = answer->record;
      return true;
    }
  if (dialect_.remote && !keepsRows()) {
    if (steps(op)) return step(op, *table, *order, *record, found);
    if (op == ReadOp::Range) return readRange(*table, *order, *key, *upper, *record, found);
  }

  if (!begin()) return false;
  SqlStatement *statement = readStatement(*table, *order, op, bounded);
  if (!statement) return false;
  int parameter = bindScope(*statement, *table, 1);
  if (takesKey(op))
    parameter = bindKey(*statement, *table, order->fields, *key, parameter);
  else if (steps(op) && !bindFields(*statement, *table, order->totalOrder, state.current.data(), parameter))
    return false;
  if (op == ReadOp::Range) bindKey(*statement, *table, order->fields, *upper, parameter);
  if (bounded) bindKey(*statement, *table, order->fields, state.rangeUpper, parameter);

  Execution execution(*statement);
  Step step = statement->step();
  if (step == Step::Failed) return false;
  found = step == Step::Row;
  if (op == ReadOp::Exists) return true;
  if (!steps(op)) state.rangeKey = -1;
  if (op == ReadOp::Range) {
    state.block.drop();
    state.rangeKey = order->index;
    state.rangeEmpty = !found;
    state.rangeUpper = *upper;
  }
  return !found || readRow(*statement, *table, state, *record);
}

bool IsamEngine::readRow(SqlStatement &statement, const Table &table, TableState &state, DATENBANK &record) {
  int column = 0;
  for (const Field &field : table.fields)
    if (!readColumn(statement, column++, field, record.bytes)) return false;
  state.current.assign(record.bytes, record.bytes + table.recordSize);
  return true;
}

bool IsamEngine::sum(FileNumber file, const SCHLUESSEL &lower, const SCHLUESSEL &upper, std::span<const int> fields,
                     std::span<int64_t> sums) {
  const Table *table = findTable(tableOf(file));
  const Key *key = table ? table->key(keyIndexOf(file)) : nullptr;
  if (!key || fields.empty() || fields.size() != sums.size() || !begin()) return false;
  const std::vector<int> summed(fields.begin(), fields.end());
  Statement &slot = tables_[size_t(table->number)].sums[{key->index, summed}];
  SqlStatement *statement = prepared(slot, slot ? std::string() : sumStatement(*table, *key, summed));
  if (!statement) return false;
  const int parameter = bindKey(*statement, *table, key->fields, lower, bindScope(*statement, *table, 1));
  const Field &last = table->fields[size_t(key->fields.back())];
  size_t at = 0;
  for (int index : key->fields)
    at += table->fields[size_t(index)].keyWidth();
  bindKeyField(*statement, parameter, last, upper.bytes + at - last.keyWidth(), scratch_);
  Execution execution(*statement);
  if (statement->step() != Step::Row) return false;
  for (size_t i = 0; i < sums.size(); ++i)
    sums[i] = statement->integer(int(i));
  return true;
}

bool IsamEngine::execute(SqlStatement &statement) {
  // A step of several statements can lose its transaction among them, also while one of them is prepared.
  if (!beginChange()) return false;
  Execution execution(statement);
  return statement.step() == Step::Done;
}

void IsamEngine::setCurrent(int number, const DATENBANK &record) {
  const Table *table = findTable(number);
  if (!table) return;
  TableState &state = tables_[size_t(number)];
  state.current.assign(record.bytes, record.bytes + table->recordSize);
  state.rangeKey = -1;
}

bool IsamEngine::change(ChangeOp op, FileNumber file, DATENBANK *record) {
  const Table *table = findTable(tableOf(file));
  if (!table || (op != ChangeOp::Delete && !record) || !beginChange()) return false;
  forgetAhead(*table);
  return op == ChangeOp::Insert ? insert(*table, *record) : changeCurrent(op, *table, record);
}

template <class Work> bool IsamEngine::inTransaction(bool needed, Work &&work) {
  const bool own = depth_ == 0 && (needed || locks_->guardsChanges());
  if (own && !transaction(TransactionOp::Begin, false)) return false;
  const bool done = beginChange() && work();
  return (!own || transaction(done ? TransactionOp::Commit : TransactionOp::Rollback, false)) && done;
}

bool IsamEngine::insert(const Table &table, DATENBANK &record) {
  if (!inScope(table)) return false;
  bool assigns = table.assigned >= 0 && numberAt(table.fields[size_t(table.assigned)], record.bytes) == 0;
  // Where several write at once, rows cannot do that: of an empty table there is none to lock. Who holds the table
  // needs no more.
  const LockName counter = LockName::on(table.number, client_, LockName::resourceOf("Nr"));
  const bool guarded =
      assigns && dialect_.locksRows && !locks_->holds(LockName::on(table.number, client_)) && !locks_->holds(counter);
  if (guarded && !locks_->acquire({&counter, 1}, LockMode::Exclusive)) return false;
  bool begun = false;
  DATENBANK before = record;
  // Reading the greatest number and inserting the next must be one step for other writers.
  const bool done = inTransaction(assigns, [&] {
    begun = true;
    if (guarded) pendingUnlocks_.push_back(counter);
    return assigns ? insertAssigned(table, record) : writeRow(table, record.bytes);
  });
  if (guarded && !begun) locks_->release({&counter, 1});
  if (done)
    tables_[size_t(table.number)].current.assign(record.bytes, record.bytes + table.recordSize);
  else
    record = before;
  return done;
}

bool IsamEngine::writeRow(const Table &table, const char *record) {
  TableState &state = tables_[size_t(table.number)];
  SqlStatement *statement = prepared(state.insert, state.insert ? std::string() : insertStatement(table));
  if (!statement) return false;
  int parameter = bindScope(*statement, table, 1);
  return bindRow(*statement, table, record, parameter) && execute(*statement);
}

bool IsamEngine::insertAssigned(const Table &table, DATENBANK &record) {
  // Older servers refuse the statement: then in two steps.
  if (dialect_.insertsDeliver)
    if (SqlStatement *statement = insertNumberedStatementOf(table)) {
      if (insertNumbered(*statement, table, record.bytes)) return true;
      // After the greatest number that there can be, a server refuses the next one.
      if (connection_->failure() != Failure::Duplicate && connection_->failure() != Failure::OutOfRange) return false;
    }
  // Where several write at once, another one can have inserted the same number between the read and the write, which
  // the greatest number of then tells from a second key that is in use.
  for (int32_t last = 0;;) {
    if (!assignNumber(table, record.bytes)) return false;
    const int32_t number = numberAt(table.fields[size_t(table.assigned)], record.bytes);
    if (number == last) return false;
    if (writeRow(table, record.bytes)) return true;
    if (!dialect_.locksRows || connection_->failure() != Failure::Duplicate) return false;
    last = number;
  }
}

bool IsamEngine::assignNumber(const Table &table, char *record) {
  TableState &state = tables_[size_t(table.number)];
  SqlStatement *statement =
      prepared(state.greatest, state.greatest ? std::string() : greatestStatement(dialect_, table));
  if (!statement) return false;
  int parameter = bindScope(*statement, table, 1);
  if (!bindFields(*statement, table, fieldsBeforeAssigned(table), record, parameter)) return false;
  Execution execution(*statement);
  Step step = statement->step();
  if (step == Step::Failed) return false;
  int64_t next = step == Step::Row ? statement->integer(0) + 1 : 1;
  const Field &field = table.fields[size_t(table.assigned)];
  if (next > INT32_MAX) next = lowestFreeNumber(table, record);
  if (next < 1 || next > INT32_MAX) return false;
  int32_t number = int32_t(next);
  std::memcpy(record + field.offset, &number, sizeof number);
  return true;
}

int64_t IsamEngine::lowestFreeNumber(const Table &table, const char *record) {
  TableState &state = tables_[size_t(table.number)];
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
  TableState &state = tables_[size_t(table.number)];
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
  parameter = bindScopeBehind(*statement, table, parameter);
  if (!bindFields(*statement, table, table.keys.front().fields, state.current.data(), parameter)) return false;
  // A record that somebody else deleted meanwhile cannot be changed.
  if (!inTransaction(false, [&] { return execute(*statement) && connection_->changedRows() == 1; })) return false;
  if (update) state.current.assign(record->bytes, record->bytes + table.recordSize);
  return true;
}

bool IsamEngine::deleteBeginning(FileNumber file, const SCHLUESSEL &values, int fields) {
  const Table *table = findTable(tableOf(file));
  const Key *key = table ? table->key(keyIndexOf(file)) : nullptr;
  if (!key || fields < 1 || size_t(fields) > key->fields.size() || !beginChange()) return false;
  forgetAhead(*table);
  std::vector<int> leading(key->fields.begin(), key->fields.begin() + fields);
  Statement &slot = tables_[size_t(table->number)].deletions[{key->index, fields}];
  SqlStatement *statement = prepared(slot, slot ? std::string() : deleteStatement(*table, leading));
  if (!statement) return false;
  bindKey(*statement, *table, leading, values, bindScope(*statement, *table, 1));
  return inTransaction(false, [&] { return execute(*statement); });
}

bool IsamEngine::beginNow(bool snapshot) {
  if (!connection_->begin(snapshot)) return false;
  forgetBlocks();
  if (!snapshot && !locks_->beginWriting()) {
    if (connection_->inTransaction()) connection_->rollback();
    locks_->endWriting(false);
    return false;
  }
  return begun_ = true;
}

bool IsamEngine::transaction(TransactionOp op, bool snapshot) {
  if (op == TransactionOp::Begin) {
    if (depth_ == 0) {
      // The one writer of an embedded database would keep the holders of the locks waited for next from writing.
      const bool later = !snapshot && !dialect_.locksRows;
      if (!later && !beginNow(snapshot)) return false;
      snapshot_ = snapshot;
    }
    ++depth_;
    return true;
  }
  if (depth_ == 0) return false;
  if (op == TransactionOp::Rollback) doomed_ = true;
  if (--depth_ > 0) return true;
  forgetBlocks();
  const bool begun = std::exchange(begun_, false);
  const bool commits = !doomed_ && begun && connection_->inTransaction();
  const bool committed = commits ? connection_->commit() : !doomed_ && !begun;
  if (!committed && connection_->inTransaction()) connection_->rollback();
  if (dialect_.remote && commits && !committed && !snapshot_ && !connection_->usable()) commitUnanswered_ = true;
  if (!committed) kept_.clear();
  doomed_ = false;
  if (!snapshot_) locks_->endWriting(committed);
  locks_->release(pendingUnlocks_);
  pendingUnlocks_.clear();
  return op == TransactionOp::Commit ? committed : !connection_->inTransaction();
}

bool IsamEngine::table(TableOp op, int number) {
  const Table *found = findTable(number);
  if (!found || !beginChange()) return false;
  forgetAhead(*found);
  // What was changed before would be committed with it.
  if (op != TableOp::Clear && dialect_.tablesEndTransactions && depth_ > 0) return false;
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
  Statement &slot = tables_[size_t(found->number)].clear;
  SqlStatement *statement = prepared(slot, slot ? std::string() : clearStatement(*found));
  if (!statement) return false;
  bindScope(*statement, *found, 1);
  return inTransaction(false, [&] { return execute(*statement); });
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

void IsamEngine::unlock(std::span<const uint16_t> tables, bool atOnce) {
  kept_.clear();
  if (depth_ == 0 || atOnce) return locks_->releaseTables(tables);
  for (uint16_t table : tables)
    for (const LockName &name : locks_->heldOn(table))
      pendingUnlocks_.push_back(name);
}

} // namespace vldb98
