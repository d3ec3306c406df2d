// What an engine does to ask a server less often: reads of several records at once, and inserts of several.
#include <algorithm>
#include <cstring>

#include "isam/isam_engine.h"
#include "isam/statements.h"

namespace vldb98 {
namespace {

// Of one statement. Accounts have more than a hundred columns, and servers allow four thousand.
constexpr size_t kMostLookUps = 16;
constexpr size_t kMostStatements = 64; // of look-ups; each is one of the server's, too

// Of one statement: a server prepares each count by itself, and allows some two thousand parameters.
constexpr size_t kMostRows = 16;

// Into a record, from a column on.
bool readFields(SqlStatement &statement, int column, const Table &table, char *record) {
  std::memset(record, 0, table.recordSize);
  return std::all_of(table.fields.begin(), table.fields.end(),
                     [&](const Field &field) { return readColumn(statement, column++, field, record); });
}

} // namespace

const KeptReads::Answer *IsamEngine::kept(ReadOp op, FileNumber file, const SCHLUESSEL &key) const {
  if (keepsRows() && !locks_->holds(LockName::on(tableOf(file), client_))) return nullptr;
  return kept_.find(op, file, key);
}

bool IsamEngine::readAhead(std::span<const LookUp> wanted) {
  // In a transaction that writes, rows would have to be kept from others one by one.
  if (!dialect_.remote || keepsRows() || !locks_->holdsAny()) return true;
  for (; !wanted.empty(); wanted = wanted.subspan(std::min(wanted.size(), kMostLookUps)))
    if (!readTogether(wanted.first(std::min(wanted.size(), kMostLookUps)))) return false;
  return true;
}

bool IsamEngine::readTogether(std::span<const LookUp> wanted) {
  std::vector<LookUpForm> forms;
  std::vector<std::pair<ReadOp, FileNumber>> kinds;
  for (const LookUp &one : wanted) {
    const Table *table = findTable(tableOf(one.file));
    const Key *key = table ? table->key(keyIndexOf(one.file)) : nullptr;
    const bool delivers = one.op == ReadOp::Exact || one.op == ReadOp::Ge || one.op == ReadOp::Le;
    if (!key || !(delivers || (one.op == ReadOp::Exists && key->unique))) return false;
    forms.push_back({table, key, one.op});
    kinds.emplace_back(one.op, one.file);
  }
  if (lookUps_.size() >= kMostStatements && !lookUps_.contains(kinds)) lookUps_.clear();
  Statement &slot = lookUps_[kinds];
  SqlStatement *statement = prepared(slot, slot ? std::string() : lookUpsStatement(dialect_, forms));
  if (!statement) return false;
  scratch_.clear();
  int parameter = 1;
  for (size_t i = 0; i < forms.size(); ++i) {
    parameter = bindScopeBehind(*statement, *forms[i].table, parameter);
    parameter = bindKey(*statement, *forms[i].table, forms[i].key->fields, wanted[i].key, parameter);
  }
  Execution execution(*statement);
  if (statement->step() != Step::Row) return false;
  int column = 0;
  for (size_t i = 0; i < forms.size(); ++i) {
    const Table &table = *forms[i].table;
    const bool test = forms[i].op == ReadOp::Exists;
    KeptReads::Answer answer{
        wanted[i], !statement->isNull(column + (test ? 0 : table.keys.front().fields.front())), {}};
    bool whole = true;
    if (answer.found && !test) {
      answer.record.resize(table.recordSize);
      whole = readFields(*statement, column, table, answer.record.data());
    }
    column += test ? 1 : int(table.fields.size());
    // A damaged record fails whoever asks for it.
    if (whole) kept_.keep(std::move(answer));
  }
  return true;
}

void IsamEngine::forgetAhead(const Table &table) {
  if (!dialect_.remote) return;
  kept_.forget(table.number);
  tables_[size_t(table.number)].block.drop();
}

void IsamEngine::forgetBlocks() {
  if (!dialect_.remote) return;
  for (TableState &state : tables_)
    state.block.drop();
}

bool IsamEngine::step(ReadOp op, const Table &table, const Key &key, DATENBANK &record, bool &found) {
  TableState &state = tables_[size_t(table.number)];
  const bool bounded = op == ReadOp::Next && state.rangeKey == key.index;
  const ReadBlock::Next next = state.block.next(op, key.index, bounded, state.current);
  if (next == ReadBlock::Next::Unknown) {
    const int rows = state.block.rowsToRead();
    Statement &slot = state.blocks[{key.index, bounded ? int(kReadOps) : int(op), rows}];
    SqlStatement *statement =
        prepared(slot, slot ? std::string() : selectStatement(dialect_, table, key, op, bounded, false, rows));
    if (!statement) return false;
    int parameter = bindScope(*statement, table, 1);
    if (!bindFields(*statement, table, key.totalOrder, state.current.data(), parameter)) return false;
    if (bounded) bindKey(*statement, table, key.fields, state.rangeUpper, parameter);
    state.block.begin(op, key.index, bounded, table.recordSize, rows);
    if (!readBlock(*statement, table, found)) return false;
  } else {
    found = next == ReadBlock::Next::Row;
  }
  deliverRow(table, record, found);
  return true;
}

bool IsamEngine::readRange(const Table &table, const Key &key, const SCHLUESSEL &lower, const SCHLUESSEL &upper,
                           DATENBANK &record, bool &found) {
  TableState &state = tables_[size_t(table.number)];
  constexpr int rows = ReadBlock::kFirstOfRange;
  Statement &slot = state.blocks[{key.index, int(ReadOp::Range), rows}];
  SqlStatement *statement =
      prepared(slot, slot ? std::string() : selectStatement(dialect_, table, key, ReadOp::Range, false, false, rows));
  if (!statement) return false;
  int parameter = bindKey(*statement, table, key.fields, lower, bindScope(*statement, table, 1));
  bindKey(*statement, table, key.fields, upper, parameter);
  state.block.begin(ReadOp::Next, key.index, true, table.recordSize, rows);
  if (!readBlock(*statement, table, found)) return false;
  state.rangeKey = key.index;
  state.rangeEmpty = !found;
  state.rangeUpper = upper;
  deliverRow(table, record, found);
  return true;
}

void IsamEngine::deliverRow(const Table &table, DATENBANK &record, bool found) {
  if (!found) return;
  TableState &state = tables_[size_t(table.number)];
  std::memcpy(record.bytes, state.block.row(), table.recordSize);
  state.current.assign(record.bytes, record.bytes + table.recordSize);
}

bool IsamEngine::readBlock(SqlStatement &statement, const Table &table, bool &found) {
  ReadBlock &block = tables_[size_t(table.number)].block;
  Execution execution(statement);
  Step step;
  while ((step = statement.step()) == Step::Row) {
    if (readFields(statement, 0, table, block.add())) continue;
    // A damaged record fails the step that leads to it, none before.
    block.takeBack();
    if (block.empty()) return false;
    block.leaveOpen();
    break;
  }
  if (step == Step::Failed) {
    block.drop();
    return false;
  }
  found = block.end();
  return true;
}

bool IsamEngine::insertAll(FileNumber file, const char *records, size_t count) {
  const Table *table = findTable(tableOf(file));
  if (!table || table->assigned >= 0 || depth_ == 0 || !inScope(*table) || !beginChange()) return false;
  forgetAhead(*table);
  const size_t most = dialect_.remote ? kMostRows : 1;
  for (size_t done = 0; done < count; done += std::min(count - done, most))
    if (!writeRows(*table, records + done * table->recordSize, std::min(count - done, most))) return false;
  if (count > 0)
    tables_[size_t(table->number)].current.assign(records + (count - 1) * table->recordSize,
                                                  records + count * table->recordSize);
  return true;
}

bool IsamEngine::writeRows(const Table &table, const char *records, size_t count) {
  if (count == 1) return writeRow(table, records);
  Statement &slot = tables_[size_t(table.number)].inserts[count];
  SqlStatement *statement = prepared(slot, slot ? std::string() : insertStatement(table, count));
  if (!statement) return false;
  while (rowScratch_.size() < count)
    rowScratch_.push_back(std::make_unique<Scratch>());
  int parameter = 1;
  for (size_t i = 0; i < count; ++i) {
    rowScratch_[i]->clear();
    parameter = bindScopeBehind(*statement, table, parameter);
    for (const Field &field : table.fields)
      if (!bindField(*statement, parameter++, field, records + i * table.recordSize, *rowScratch_[i])) return false;
  }
  return execute(*statement);
}

SqlStatement *IsamEngine::insertNumberedStatementOf(const Table &table) {
  Statement &slot = tables_[size_t(table.number)].insertNumbered;
  return prepared(slot, slot ? std::string() : insertNumberedStatement(dialect_, table));
}

bool IsamEngine::insertNumbered(SqlStatement &statement, const Table &table, char *record) {
  int parameter = bindScope(statement, table, 1);
  for (size_t i = 0; i < table.fields.size(); ++i)
    if (int(i) != table.assigned && !bindField(statement, parameter++, table.fields[i], record, scratch_)) return false;
  parameter = bindScopeBehind(statement, table, parameter);
  if (!bindFields(statement, table, fieldsBeforeAssigned(table), record, parameter)) return false;
  if (!beginChange()) return false;
  Execution execution(statement);
  if (statement.step() != Step::Row) return false;
  const auto number = int32_t(statement.integer(0));
  std::memcpy(record + table.fields[size_t(table.assigned)].offset, &number, sizeof number);
  return true;
}

} // namespace vldb98
