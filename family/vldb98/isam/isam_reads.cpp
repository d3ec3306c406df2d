#include <cstring>

#include "isam/isam_engine.h"
#include "isam/statements.h"

namespace vldb98 {
namespace {

bool takesKey(ReadOp op) {
  return op >= ReadOp::Ge && op != ReadOp::StepFirst && op != ReadOp::StepNext;
}
bool steps(ReadOp op) {
  return op == ReadOp::Next || op == ReadOp::Prev || op == ReadOp::StepNext;
}

} // namespace

void IsamEngine::setScope(uint16_t client, int year) {
  if (client == client_ && year == year_) return;
  guardsEnd();
  stateChanges();
  for (const Table &table : allTables()) {
    bool concerned =
        table.scope != Scope::Global && (client != client_ || (table.scope == Scope::FiscalYear && year != year_));
    if (!concerned) continue;
    stateOf(table).current.clear();
    stateOf(table).rangeKey = -1;
  }
  client_ = client;
  year_ = year;
}

SqlStatement *IsamEngine::prepared(Statement &statement, const std::string &text) {
  if (!statement) statement = connection_->prepare(text);
  return statement.get();
}

SqlStatement *IsamEngine::readStatement(const ReadRequest &asked) {
  const bool forUpdate = keepsRows() && asked.op != ReadOp::Exists;
  const size_t which = (asked.bounded ? kReadOps : size_t(asked.op)) + (forUpdate ? kReadOps + 1 : 0);
  Statement &slot = stateOf(asked.table).reads[asked.order.index][which];
  return slot ? slot.get()
              : prepared(slot, selectStatement(dialect_, asked.table, asked.order, asked.op, asked.bounded, forUpdate));
}

int IsamEngine::bindScope(SqlStatement &statement, const Table &table, int parameter) {
  scratch_.clear();
  return bindScopeAfter(statement, table, parameter);
}

int IsamEngine::bindScopeAfter(SqlStatement &statement, const Table &table, int parameter) {
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

bool IsamEngine::read(ReadOp op, FileNumber file, const SCHLUESSEL *key, const SCHLUESSEL *upper, DATENBANK *record,
                      bool &found) {
  found = false;
  const Table *table = findTable(tableOf(file));
  bool physical = op == ReadOp::StepFirst || op == ReadOp::StepNext;
  const Key *order = table ? table->key(physical ? 0 : keyIndexOf(file)) : nullptr;
  if (!order || (takesKey(op) && !key) || (op == ReadOp::Range && !upper)) return false;
  TableState &state = stateOf(*table);
  if (steps(op) && state.current.empty()) return true;
  const bool bounded = op == ReadOp::Next && state.rangeKey == order->index;
  if (bounded && state.rangeEmpty) return true;
  if (!readRow({op, file, *table, *order, key, upper, bounded}, record, found)) return false;
  if (op == ReadOp::Exists || steps(op)) return true;
  state.rangeKey = op == ReadOp::Range ? order->index : -1;
  state.rangeEmpty = !found;
  if (op == ReadOp::Range) state.rangeUpper = *upper;
  return true;
}

bool IsamEngine::readRow(const ReadRequest &asked, DATENBANK *record, bool &found) {
  const auto &[op, file, table, order, key, upper, bounded] = asked;
  if (!begin()) return false;
  // Rows that are kept from others are read one by one: those that follow need not be wanted.
  if (steps(op) && !keepsRows()) return step(asked, *record, found);
  if (op == ReadOp::Range && !keepsRows()) return readRange(asked, *record, found);
  if (op == ReadOp::Range) stateOf(table).block.drop();
  SqlStatement *statement = readStatement(asked);
  if (!statement) return false;
  const TableState &state = stateOf(table);
  int parameter = bindScope(*statement, table, 1);
  if (takesKey(op))
    parameter = bindKey(*statement, table, order.fields, *key, parameter);
  else if (steps(op) && !bindFields(*statement, table, order.totalOrder, state.current.data(), parameter))
    return false;
  if (op == ReadOp::Range) bindKey(*statement, table, order.fields, *upper, parameter);
  if (bounded) bindKey(*statement, table, order.fields, state.rangeUpper, parameter);

  Execution execution(*statement);
  const Step step = statement->step();
  if (step == Step::Failed) return false;
  found = step == Step::Row;
  return !found || op == ReadOp::Exists || deliver(*statement, table, *record);
}

bool IsamEngine::deliver(SqlStatement &statement, const Table &table, DATENBANK &record) {
  if (!readRecord(statement, 0, table, record.bytes)) return false;
  makeCurrent(table, record.bytes);
  return true;
}

bool IsamEngine::sum(FileNumber file, const SCHLUESSEL &lower, const SCHLUESSEL &upper, std::span<const int> fields,
                     std::span<int64_t> sums) {
  const Table *table = findTable(tableOf(file));
  const Key *key = table ? table->key(keyIndexOf(file)) : nullptr;
  if (!key || fields.empty() || fields.size() != sums.size() || !begin()) return false;
  const std::vector<int> summed(fields.begin(), fields.end());
  Statement &slot = stateOf(*table).sums[{key->index, summed}];
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

void IsamEngine::setCurrent(int number, const DATENBANK &record) {
  const Table *table = findTable(number);
  if (!table) return;
  makeCurrent(*table, record.bytes);
  stateOf(*table).rangeKey = -1;
}

} // namespace vldb98
