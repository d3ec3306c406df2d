#include <utility>

#include "isam/isam_engine.h"
#include "sql/sql_text.h"

namespace vldb98 {
namespace {

std::string savepoint(const char *pattern, size_t depth) {
  return filledIn(pattern, "%d", std::to_string(depth));
}

} // namespace

IsamEngine::IsamEngine(std::unique_ptr<SqlConnection> connection, std::unique_ptr<Locks> locks, uint64_t blockLife)
    : connection_(std::move(connection)), dialect_(connection_->dialect()), locks_(std::move(locks)) {
  for (TableState &state : tables_)
    state.block = ReadBlock(blockLife);
}

IsamEngine::~IsamEngine() {
  if (inTransaction() && connection_->inTransaction()) connection_->rollback();
}

bool IsamEngine::beginNow(bool snapshot) {
  if (!connection_->begin(snapshot)) return false;
  stateChanges();
  if (!snapshot && !locks_->beginWriting()) {
    if (connection_->inTransaction()) connection_->rollback();
    locks_->endWriting(false);
    return false;
  }
  return begun_ = true;
}

bool IsamEngine::transaction(TransactionOp op, bool snapshot) {
  if (op == TransactionOp::Begin) {
    if (!inTransaction()) {
      if ((snapshot || !beginsLate()) && !beginNow(snapshot)) return false;
      snapshot_ = snapshot;
      outer_.push_back(false);
      return true;
    }
    // Before the first statement there is nothing that the inner one could go back to but the beginning.
    if (begun_ && !connection_->execute(savepoint(dialect_.savepoint, outer_.size()))) return false;
    if (begun_) locks_->savepoint();
    outer_.push_back(begun_);
    return true;
  }
  if (!inTransaction()) return false;
  const bool hasSavepoint = outer_.back();
  outer_.pop_back();
  const bool commits = op == TransactionOp::Commit;
  return inTransaction() ? endInner(commits, hasSavepoint) : endOuter(commits);
}

bool IsamEngine::endInner(bool commits, bool hasSavepoint) {
  stateChanges();
  const size_t depth = outer_.size();
  if (hasSavepoint) {
    const bool undone = commits || connection_->execute(savepoint(dialect_.rollbackTo, depth));
    if (!locks_->endSavepoint(commits) || !undone) doomed_ = true;
    if (*dialect_.release && connection_->inTransaction()) connection_->execute(savepoint(dialect_.release, depth));
  }
  if (!commits && !hasSavepoint && std::exchange(begun_, false) && connection_->inTransaction()) {
    // All that there is of the outer one was done by the inner one.
    if (!connection_->rollback()) doomed_ = true;
    if (!snapshot_) locks_->endWriting(false);
  }
  if (!commits) guardsEnd();
  return true;
}

bool IsamEngine::endOuter(bool commits) {
  stateChanges();
  if (!commits) doomed_ = true;
  const bool begun = std::exchange(begun_, false);
  const bool toCommit = !doomed_ && begun && connection_->inTransaction();
  const bool committed = toCommit ? connection_->commit() : !doomed_ && !begun;
  if (!committed && connection_->inTransaction()) connection_->rollback();
  if (committed && begun && !snapshot_) ++committedChanges;
  if (toCommit && !committed && !snapshot_) commitFailed();
  if (!committed) guardsEnd();
  doomed_ = false;
  if (!snapshot_) locks_->endWriting(committed);
  locks_->release(pendingUnlocks_);
  pendingUnlocks_.clear();
  return commits ? committed : !connection_->inTransaction();
}

std::optional<uint64_t> IsamEngine::stateVersion() {
  return begun_ && snapshot_ ? connection_->stateVersion() : std::nullopt;
}

void IsamEngine::unlock(std::span<const uint16_t> tables, bool atOnce) {
  guardsEnd();
  if (!inTransaction() || atOnce) return locks_->releaseTables(tables);
  for (uint16_t table : tables)
    for (const LockName &name : locks_->heldOn(table))
      pendingUnlocks_.push_back(name);
}

} // namespace vldb98
