// Steps of walks and ranges, which read the rows that follow as well.
#include <algorithm>
#include <cstring>

#include "isam/isam_engine.h"
#include "isam/statements.h"

namespace vldb98 {

void IsamEngine::tableChanges(const Table &table) {
  stateOf(table).block.drop();
}

void IsamEngine::stateChanges() {
  for (int table : walked_)
    tables_[size_t(table)].block.drop();
  walked_.clear();
}

bool IsamEngine::step(const ReadRequest &asked, DATENBANK &record, bool &found) {
  const auto &[op, file, table, key, lower, upper, bounded] = asked;
  TableState &state = stateOf(table);
  const ReadBlock::Next next = state.block.next(op, key.index, bounded, state.current);
  found = next == ReadBlock::Next::Row;
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
  }
  if (found) deliverRow(table, record);
  return true;
}

bool IsamEngine::readRange(const ReadRequest &asked, DATENBANK &record, bool &found) {
  const auto &[op, file, table, key, lower, upper, bounded] = asked;
  TableState &state = stateOf(table);
  constexpr int rows = ReadBlock::kFirstOfRange;
  Statement &slot = state.blocks[{key.index, int(ReadOp::Range), rows}];
  SqlStatement *statement =
      prepared(slot, slot ? std::string() : selectStatement(dialect_, table, key, ReadOp::Range, false, false, rows));
  if (!statement) return false;
  int parameter = bindKey(*statement, table, key.fields, *lower, bindScope(*statement, table, 1));
  bindKey(*statement, table, key.fields, *upper, parameter);
  state.block.begin(ReadOp::Next, key.index, true, table.recordSize, rows);
  if (!readBlock(*statement, table, found)) return false;
  if (found) deliverRow(table, record);
  return true;
}

void IsamEngine::deliverRow(const Table &table, DATENBANK &record) {
  std::memcpy(record.bytes, stateOf(table).block.row(), table.recordSize);
  makeCurrent(table, record.bytes);
}

bool IsamEngine::readBlock(SqlStatement &statement, const Table &table, bool &found) {
  if (std::find(walked_.begin(), walked_.end(), table.number) == walked_.end()) walked_.push_back(table.number);
  ReadBlock &block = stateOf(table).block;
  Execution execution(statement);
  Step step;
  while ((step = statement.step()) == Step::Row) {
    if (readRecord(statement, 0, table, block.add())) continue;
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
