// Look-ups that will be asked for, read from a server together.
#include <algorithm>
#include <cstring>

#include "isam/server_engine.h"
#include "isam/statements.h"

namespace vldb98 {
namespace {

// Of one statement. Accounts have more than a hundred columns, and servers allow four thousand.
constexpr size_t kMostLookUps = 16;
constexpr size_t kMostStatements = 64; // of look-ups; each is one of the server's, too

} // namespace

bool ServerEngine::readRow(const ReadRequest &asked, DATENBANK *record, bool &found) {
  if (const KeptReads::Answer *answer = kept(asked)) {
    found = answer->found;
    if (!found || asked.op == ReadOp::Exists) return true;
    std::memcpy(record->bytes, answer->record.data(), asked.table.recordSize);
    makeCurrent(asked.table, record->bytes);
    return true;
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
      whole = readRecord(*statement, column, table, answer.record.data());
    }
    column += test ? 1 : int(table.fields.size());
    // A damaged record fails whoever asks for it.
    if (whole) kept_.keep(std::move(answer));
  }
  return true;
}

void ServerEngine::tableChanges(const Table &table) {
  kept_.forget(table.number);
  IsamEngine::tableChanges(table);
}

} // namespace vldb98
