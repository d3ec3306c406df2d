/// Locks on tables and resources, which exclude other threads and processes and die with their holder.
#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/lock_file.h"
#include "sql/sql.h"

namespace vldb98 {

/// What a lock is on: a table of a client, or one resource of such a table. A table's lock and those on its resources
/// are separate and never wait for each other (the named locks of servers know no shared kind): who changes rows locks
/// the table, and a resource's lock holds among those who ask for that resource. Who needs both takes the table first.
struct LockName {
  uint16_t client = 0; ///< 0: of the whole database, as every lock on a table that has one set of rows
  uint16_t table = 0;
  uint64_t resource = 0; ///< 0: the whole table

  auto operator<=>(const LockName &) const = default;

  static LockName on(int table, uint16_t client, uint64_t resource = 0);

  /// A resource named by a text; never 0.
  /// \par Source
  /// FNV-1a, 64 bits (G. Fowler, L. C. Noll, K.-P. Vo).
  static uint64_t resourceOf(std::string_view text);
};

enum class LockMode {
  Exclusive,
  /// Waits until no writer holds the lock, and takes nothing: for a reader that positions, so that a reader that is
  /// abandoned never stands in a writer's way.
  PassThrough,
};

/// The locks of one session. A lock that the session holds already is counted, not taken again.
class Locks {
public:
  virtual ~Locks() = default;

  /// Takes locks in the order given, all of them or none. \return false when another session holds one of them and does
  /// not let it go within the waiting time; the locks after that one are not tried
  bool acquire(std::span<const LockName> names, LockMode mode);
  /// Lowers the counts and lets those locks go that are not held any more. Names that the session does not hold do not
  /// matter.
  void release(std::span<const LockName> names);
  /// The same for tables, their resources and their clients: each name that is held, once.
  void releaseTables(std::span<const uint16_t> tables);
  /// The names held on a table.
  std::vector<LockName> heldOn(uint16_t table) const;
  bool holds(const LockName &name) const { return held_.contains(name); }
  bool holdsAny() const { return !held_.empty(); }
  /// The whole table that was locked last, be it still or not; none: the database's own, which nobody locks.
  const LockName &lastTable() const { return lastTable_; }
  /// Ends a connection by the server's number for it if it holds that lock.
  virtual void endHolder(const LockName &, int64_t) {}

  /// Whether a change has to be in a transaction while locks are held.
  virtual bool guardsChanges() const { return false; }
  /// Told in a transaction that has just begun and will write. \return false when somebody else changed what the locks
  /// held are on since they were taken: the transaction is rolled back, or has to be
  virtual bool beginWriting() { return true; }
  /// Told in such a transaction at a savepoint, and when it is given up. \return false when what was undone since
  /// cannot be held any more
  virtual void savepoint() {}
  virtual bool endSavepoint([[maybe_unused]] bool kept) { return true; }
  /// Told at the end of such a transaction, before its locks are released.
  virtual void endWriting([[maybe_unused]] bool committed) {}

protected:
  explicit Locks(std::chrono::milliseconds wait) : wait_(wait) {}

  /// Takes locks in their order until one is not had within the waiting time. \return how many were
  virtual size_t take(std::span<const LockName> names) = 0;
  /// Waits for the holder of a lock, and takes nothing.
  virtual bool pass(const LockName &name) = 0;
  /// Several in turn, then flush(), which may be what lets them go.
  virtual void giveBack(const LockName &name) noexcept = 0;
  virtual void flush() noexcept {}

  std::chrono::milliseconds wait() const { return wait_; }

private:
  using Held = std::map<LockName, int>;

  Held::iterator lower(Held::iterator mine);

  Held held_;
  LockName lastTable_;
  std::chrono::milliseconds wait_;
};

/// Locks as bytes of a file beside the embedded database. Null when the file cannot be opened.
std::unique_ptr<Locks> openFileLocks(const std::string &path, std::chrono::milliseconds wait);

/// Named locks of a server, which the connection holds. \param database as the server calls it \param connection
/// outlives the locks
std::unique_ptr<Locks> openServerLocks(SqlConnection &connection, const std::string &database,
                                       std::chrono::milliseconds wait);

/// Locks on a cluster of servers, whose nodes do not know of each other's named locks. A lock is a named one of the
/// node, where it has them, so that its writers wait for each other; and a row that a transaction raises which writes
/// while the lock is held, so that of two writers on two nodes one fails (Failure::Retry) and never mixes with the
/// other. What was read since the lock was taken still holds when the transaction commits.
/// \param named locks of the node; null where it refuses them
/// \return null when the table of the rows cannot be made
std::unique_ptr<Locks> openClusterLocks(SqlConnection &connection, std::unique_ptr<Locks> named,
                                        std::chrono::milliseconds wait);

/// The name of a lock on a server, at most 64 bytes. Named locks are the whole server's, so it holds the database's
/// name, or where that is too long its hash. Names that differ in case only are one, as they can be for the server.
std::string serverLockName(const std::string &database, const LockName &name);

} // namespace vldb98
