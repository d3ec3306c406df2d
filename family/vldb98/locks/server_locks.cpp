// Named locks of a database server. They die with the connection that holds them.
#include <cstdio>

#include "locks/lock_statements.h"
#include "locks/locks.h"
#include "sql/sql_text.h"

namespace vldb98 {
namespace {

constexpr size_t kLongestName = 64; // of MySQL

class ServerLocks final : public Locks {
public:
  ServerLocks(SqlConnection &connection, std::string database, std::chrono::milliseconds wait)
      : Locks(wait), connection_(connection), database_(std::move(database)) {}

  void endHolder(const LockName &name, int64_t connection) override {
    auto holder = connection_.prepare(connection_.dialect().namedLocks.holder);
    if (!holder) return;
    const std::string text = serverLockName(database_, name);
    holder->bind(1, std::string_view(text));
    const bool holds = holder->step() == Step::Row && holder->integer(0) == connection;
    holder->reset();
    if (holds)
      connection_.execute(filledIn(connection_.dialect().namedLocks.endConnection, "%d", std::to_string(connection)));
  }

private:
  using Statements = std::map<size_t, std::unique_ptr<SqlStatement>>; // by count of locks

  size_t take(std::span<const LockName> names) override {
    // What is given back later must not need memory then.
    leaving_.reserve(leaving_.size() + taken_ + names.size());
    SqlStatement *statement = prepared(takes_, names.size(), &lockStatement);
    if (!statement) return 0;
    const int64_t taken = answer(*statement, names);
    taken_ += size_t(taken);
    return size_t(taken);
  }

  bool pass(const LockName &name) override {
    if (!passes_) passes_ = connection_.prepare(connection_.dialect().namedLocks.pass);
    return passes_ && answer(*passes_, {&name, 1}) == 1;
  }

  void giveBack(const LockName &name) noexcept override { leaving_.push_back(name); }

  void flush() noexcept override {
    if (leaving_.empty()) return;
    try {
      if (SqlStatement *statement = prepared(gives_, leaving_.size(), &unlockStatement)) {
        bind(*statement, leaving_);
        statement->step();
        statement->reset();
      }
    } catch (...) {
      // Out of memory. The frame ends a session whose call was torn off, and the server its locks.
    }
    taken_ -= leaving_.size();
    leaving_.clear();
  }

  SqlStatement *prepared(Statements &statements, size_t count, std::string (*text)(const Dialect &, size_t)) {
    auto &slot = statements[count];
    if (!slot) slot = connection_.prepare(text(connection_.dialect(), count));
    return slot.get();
  }

  int bind(SqlStatement &statement, std::span<const LockName> names) {
    texts_.clear();
    for (const LockName &name : names)
      texts_.push_back(serverLockName(database_, name));
    int parameter = 1;
    for (const std::string &text : texts_)
      statement.bind(parameter++, std::string_view(text));
    return parameter;
  }

  // The number that a statement delivers for locks that it waits for; 0 when it fails.
  int64_t answer(SqlStatement &statement, std::span<const LockName> names) {
    const int parameter = bind(statement, names);
    statement.bind(parameter, int64_t(wait().count()));
    const int64_t value = statement.step() == Step::Row ? statement.integer(0) : 0;
    statement.reset();
    return value;
  }

  SqlConnection &connection_;
  std::string database_;
  Statements takes_, gives_;
  std::unique_ptr<SqlStatement> passes_;
  std::vector<std::string> texts_;
  std::vector<LockName> leaving_;
  size_t taken_ = 0;
};

} // namespace

std::string serverLockName(const std::string &database, const LockName &name) {
  char numbers[48];
  std::snprintf(numbers, sizeof numbers, "/%u/%u/%08lx%08lx", unsigned(name.client), unsigned(name.table),
                static_cast<unsigned long>(name.resource >> 32),
                static_cast<unsigned long>(name.resource & 0xFFFFFFFFu));
  std::string lower = database;
  for (char &c : lower)
    if (c >= 'A' && c <= 'Z') c = char(c - 'A' + 'a');
  std::string text = "zelk98/" + lower + numbers;
  if (text.size() <= kLongestName) return text;
  char hash[17];
  const uint64_t hashed = LockName::resourceOf(lower);
  std::snprintf(hash, sizeof hash, "%08lx%08lx", static_cast<unsigned long>(hashed >> 32),
                static_cast<unsigned long>(hashed & 0xFFFFFFFFu));
  return std::string("zelk98/") + hash + numbers;
}

std::unique_ptr<Locks> openServerLocks(SqlConnection &connection, const std::string &database,
                                       std::chrono::milliseconds wait) {
  return std::make_unique<ServerLocks>(connection, database, wait);
}

} // namespace vldb98
