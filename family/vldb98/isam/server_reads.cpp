// What is read from a server together: look-ups that will be asked for, and the rows that a walk comes to next.
#include <algorithm>
#include <cstring>

#include "isam/server_engine.h"
#include "isam/statements.h"

namespace vldb98 {
namespace {

// Of one statement. Accounts have more than a hundred columns, and servers allow four thousand.
constexpr size_t kMostLookUps = 16;
constexpr size_t kMostStatements = 64; // of look-ups; each is one of the server's, too

// Into a record, from a column on.
bool readFields(SqlStatement &statement, int column, const Table &table, char *record) {
  std::memset(record, 0, table.recordSize);
  return std::all_of(table.fields.begin(), table.fields.end(),
                     [&](const Field &field) { return readColumn(statement, column++, field, record); });
}

} // namespace

bool ServerEngine::readRow(const ReadRequest &asked, DATENBANK *record, bool &found) {
  if (const KeptReads::Answer *answer = kept(asked)) {
    found = answer->found;
    if (!found || asked.op == ReadOp::Exists) return true;
    std::memcpy(record->bytes, answer->record.data(), asked.table.recordSize);
    makeCurrent(asked.table, record->bytes);
    return true;
  }
  const bool steps = asked.op == ReadOp::Next || asked.op == ReadOp::Prev || asked.op == ReadOp::StepNext;
  if (steps && !keepsRows()) return step(asked, *record, found);
  if (asked.op == ReadOp::Range) {
    if (!keepsRows()) return readRange(asked, *record, found);
    serverStateOf(asked.table).block.drop();
  }
  return IsamEngine::readRow(asked, record, found);
}

const KeptReads::Answer *ServerEngine::kept(const ReadRequest &asked) const {
  if (kept_.empty() || !asked.key || asked.op == ReadOp::Range) return nullptr;
  if (keepsRows() && !locks_->holds(LockName::on(asked.table.number, client_))) return nullptr;
  return kept_.find(asked.op, asked.file, *asked.key);
}

bool ServerEngine::readAhead(std::span<const LookUp> wanted) {
  // In a transaction that writes, rows would have to be kept from others one by one.
  if (keepsRows() || !locks_->holdsAny()) return true;
  for (; !wanted.empty(); wanted = wanted.subspan(std::min(wanted.size(), kMostLookUps)))
    if (!readTogether(wanted.first(std::min(wanted.size(), kMostLookUps)))) return false;
  return true;
}

bool ServerEngine::readTogether(std::span<const LookUp> wanted) {
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
    parameter = bindScopeAfter(*statement, *forms[i].table, parameter);
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

void ServerEngine::tableChanges(const Table &table) {
  kept_.forget(table.number);
  serverStateOf(table).block.drop();
}

void ServerEngine::stateChanges() {
  for (ServerState &state : onServer_)
    state.block.drop();
}

bool ServerEngine::step(const ReadRequest &asked, DATENBANK &record, bool &found) {
  const auto &[op, file, table, key, lower, upper, bounded] = asked;
  const TableState &state = stateOf(table);
  ServerState &server = serverStateOf(table);
  const ReadBlock::Next next = server.block.next(op, key.index, bounded, state.current);
  found = next == ReadBlock::Next::Row;
  if (next == ReadBlock::Next::Unknown) {
    const int rows = server.block.rowsToRead();
    Statement &slot = server.blocks[{key.index, bounded ? int(kReadOps) : int(op), rows}];
    SqlStatement *statement =
        prepared(slot, slot ? std::string() : selectStatement(dialect_, table, key, op, bounded, false, rows));
    if (!statement) return false;
    int parameter = bindScope(*statement, table, 1);
    if (!bindFields(*statement, table, key.totalOrder, state.current.data(), parameter)) return false;
    if (bounded) bindKey(*statement, table, key.fields, state.rangeUpper, parameter);
    server.block.begin(op, key.index, bounded, table.recordSize, rows);
    if (!readBlock(*statement, table, found)) return false;
  }
  if (found) deliverRow(table, record);
  return true;
}

bool ServerEngine::readRange(const ReadRequest &asked, DATENBANK &record, bool &found) {
  const auto &[op, file, table, key, lower, upper, bounded] = asked;
  ServerState &server = serverStateOf(table);
  constexpr int rows = ReadBlock::kFirstOfRange;
  Statement &slot = server.blocks[{key.index, int(ReadOp::Range), rows}];
  SqlStatement *statement =
      prepared(slot, slot ? std::string() : selectStatement(dialect_, table, key, ReadOp::Range, false, false, rows));
  if (!statement) return false;
  int parameter = bindKey(*statement, table, key.fields, *lower, bindScope(*statement, table, 1));
  bindKey(*statement, table, key.fields, *upper, parameter);
  server.block.begin(ReadOp::Next, key.index, true, table.recordSize, rows);
  if (!readBlock(*statement, table, found)) return false;
  if (found) deliverRow(table, record);
  return true;
}

void ServerEngine::deliverRow(const Table &table, DATENBANK &record) {
  std::memcpy(record.bytes, serverStateOf(table).block.row(), table.recordSize);
  makeCurrent(table, record.bytes);
}

bool ServerEngine::readBlock(SqlStatement &statement, const Table &table, bool &found) {
  ReadBlock &block = serverStateOf(table).block;
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

} // namespace vldb98
