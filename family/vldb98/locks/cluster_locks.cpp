// Locks that hold on all nodes of a cluster. Its transactions are compared row by row when they commit, so a row for
// each lock makes visible what two writers would not see of each other otherwise.
#include <optional>
#include <tuple>

#include "locks/lock_statements.h"
#include "locks/locks.h"

namespace vldb98 {
namespace {

// Of making rows, which another node can do at the same moment.
constexpr int kAttempts = 10;

/// A row's key, in the order of the table's index.
using Row = std::tuple<uint16_t, uint16_t, int64_t>;

Row rowOf(const LockName &name) {
  return {name.client, name.table, int64_t(name.resource)};
}

/// How often what a lock is on has been changed under it.
struct Stand {
  std::optional<int64_t> noted;  ///< when the lock was taken; none: whatever it is
  std::optional<int64_t> raised; ///< by the running transaction
};

constexpr int64_t kNever = -1; ///< no row's count

class ClusterLocks final : public Locks {
public:
  ClusterLocks(SqlConnection &connection, std::unique_ptr<Locks> named, std::chrono::milliseconds wait)
      : Locks(wait), connection_(connection), named_(std::move(named)) {}

  bool makeTable() {
    auto read = connection_.prepare(lockRowsStatement(LockRows::Read, 1));
    return read || (connection_.usable() && connection_.execute(createLockRowsStatement(connection_.dialect())));
  }

  bool guardsChanges() const override { return holdsAny(); }

  void endHolder(const LockName &name, int64_t connection) override {
    if (named_) named_->endHolder(name, connection);
  }

  bool beginWriting() override {
    writing_ = true;
    Rows known, unknown;
    for (const auto &[row, stand] : rows_)
      (stand.noted ? known : unknown).emplace(row, stand);
    return raiseAll(known, unknown);
  }

  void savepoint() override { atSavepoints_.push_back(rows_); }

  bool endSavepoint(bool kept) override {
    const Rows before = std::move(atSavepoints_.back());
    atSavepoints_.pop_back();
    if (kept) return true;
    // What was raised since is not any more.
    Rows known, unknown;
    for (auto &[row, stand] : rows_) {
      const auto then = before.find(row);
      if (!stand.raised || (then != before.end() && then->second.raised)) continue;
      stand.raised.reset();
      (stand.noted ? known : unknown).emplace(row, stand);
    }
    return raiseAll(known, unknown);
  }

  void endWriting(bool committed) override {
    writing_ = false;
    atSavepoints_.clear();
    for (auto &[row, stand] : rows_) {
      if (committed && stand.raised) stand.noted = stand.raised;
      stand.raised.reset();
    }
  }

private:
  using Rows = std::map<Row, Stand>;
  using Statements = std::map<std::pair<LockRows, size_t>, std::unique_ptr<SqlStatement>>;

  size_t take(std::span<const LockName> names) override {
    // What is given back later must not need memory then.
    leaving_.reserve(leaving_.size() + rows_.size() + names.size());
    Rows rows;
    for (const LockName &name : names)
      rows[rowOf(name)];
    const bool queued = !named_ || named_->acquire(names, LockMode::Exclusive);
    const bool open = !writing_ || connection_.inTransaction();
    if (!queued && (open || !connection_.usable())) return 0;
    // A lock that is not had for another reason than that somebody else holds it counts as taken: nothing can be
    // written under it.
    const bool had = queued && open && (writing_ ? raise(rows) : note(rows));
    if (!had && writing_ && connection_.inTransaction()) connection_.collided();
    for (auto &[row, stand] : rows)
      if (!had) stand = {kNever, {}};
    remember(rows);
    return names.size();
  }

  // A reader waits for the writers of its own node only: on the others there is nobody to be waited for.
  bool pass(const LockName &name) override { return !named_ || named_->acquire({&name, 1}, LockMode::PassThrough); }

  void giveBack(const LockName &name) noexcept override {
    leaving_.push_back(name);
    rows_.erase(rowOf(name));
  }
  void flush() noexcept override {
    if (named_) named_->release(leaving_);
    leaving_.clear();
  }

  void remember(const Rows &rows) {
    for (const auto &[row, stand] : rows)
      rows_[row] = stand;
  }

  SqlStatement *bound(LockRows what, const Rows &rows) {
    auto &statement = statements_[{what, rows.size()}];
    if (!statement) statement = connection_.prepare(lockRowsStatement(what, rows.size()));
    int parameter = 1;
    for (auto row = rows.begin(); statement && row != rows.end(); ++row) {
      statement->bind(parameter++, int64_t(std::get<0>(row->first)));
      statement->bind(parameter++, int64_t(std::get<1>(row->first)));
      statement->bind(parameter++, std::get<2>(row->first));
      if (what == LockRows::RaiseNoted) statement->bind(parameter++, *row->second.noted);
    }
    return statement.get();
  }

  // Executes a statement that delivers rows. \return whether it delivered all of them
  bool deliver(LockRows what, Rows &rows, std::optional<int64_t> Stand::*to) {
    SqlStatement *statement = bound(what, rows);
    size_t count = 0;
    for (auto &[row, stand] : rows)
      (stand.*to).reset();
    Step step = statement ? statement->step() : Step::Failed;
    for (; step == Step::Row; step = statement->step()) {
      auto row = rows.find({uint16_t(statement->integer(0)), uint16_t(statement->integer(1)), statement->integer(2)});
      if (row == rows.end()) continue;
      row->second.*to = statement->integer(3);
      ++count;
    }
    if (statement) statement->reset();
    return step == Step::Done && count == rows.size();
  }

  // Outside a transaction that writes: what others do from now on is seen when one begins.
  bool note(Rows &rows) {
    for (int attempt = 1; !deliver(LockRows::Read, rows, &Stand::noted); ++attempt) {
      if (attempt == kAttempts || !connection_.usable()) return false;
      Rows missing = rows;
      std::erase_if(missing, [](const auto &row) { return row.second.noted.has_value(); });
      SqlStatement *make = bound(LockRows::Make, missing.empty() ? rows : missing);
      if (make) {
        make->step();
        make->reset();
      }
    }
    return true;
  }

  bool raiseAll(Rows &known, Rows &unknown) {
    if (!raiseNoted(known) || !raise(unknown)) return false;
    remember(known);
    remember(unknown);
    return true;
  }

  // In a transaction that writes: from now to its end nobody else does.
  bool raise(Rows &rows) { return rows.empty() || deliver(LockRows::Raise, rows, &Stand::raised); }

  bool raiseNoted(Rows &rows) {
    if (rows.empty()) return true;
    SqlStatement *statement = bound(LockRows::RaiseNoted, rows);
    const bool done = statement && statement->step() == Step::Done;
    if (statement) statement->reset();
    if (!done) return false;
    if (connection_.changedRows() != int64_t(rows.size())) {
      connection_.collided();
      return false;
    }
    for (auto &[row, stand] : rows)
      stand.raised = *stand.noted + 1;
    return true;
  }

  SqlConnection &connection_;
  std::unique_ptr<Locks> named_;
  Statements statements_;
  Rows rows_; // of the locks held
  std::vector<Rows> atSavepoints_;
  std::vector<LockName> leaving_;
  bool writing_ = false;
};

} // namespace

std::unique_ptr<Locks> openClusterLocks(SqlConnection &connection, std::unique_ptr<Locks> named,
                                        std::chrono::milliseconds wait) {
  // With the first session, not with the schema: a server becomes a node long after its tables were made.
  auto locks = std::make_unique<ClusterLocks>(connection, std::move(named), wait);
  return locks->makeTable() ? std::move(locks) : nullptr;
}

} // namespace vldb98
