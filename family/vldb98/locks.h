/// Locks on tables and resources, which exclude other threads and processes and die with their holder.
#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <string_view>
#include <vector>

#include "platform/lock_file.h"

namespace vldb98 {

/// What a lock is on: a table of a client, or one resource of such a table.
struct LockName {
  uint16_t client = 0; ///< 0: of the whole database
  uint16_t table = 0;
  uint64_t resource = 0; ///< 0: the whole table

  auto operator<=>(const LockName &) const = default;

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

  /// \return false when another session holds it and does not let it go within the waiting time
  bool acquire(const LockName &name, LockMode mode);
  /// Lowers the count and lets the lock go with the last. Nothing happens when the session does not hold it.
  void release(const LockName &name);
  /// The same for a table, its resources and its clients: each name that is held, once.
  void releaseTable(uint16_t table);
  /// The names held on a table.
  std::vector<LockName> heldOn(uint16_t table) const;
  bool holdsAny() const { return !held_.empty(); }

protected:
  explicit Locks(std::chrono::milliseconds wait) : wait_(wait) {}

  virtual bool tryTake(const LockName &name) = 0;
  virtual void giveBack(const LockName &name) = 0;

private:
  using Held = std::map<LockName, int>;

  bool waitFor(const LockName &name);
  Held::iterator release(Held::iterator mine);

  Held held_;
  std::chrono::milliseconds wait_;
};

/// Locks as bytes of a file beside the embedded database. Null when the file cannot be opened.
std::unique_ptr<Locks> openFileLocks(const std::string &path, std::chrono::milliseconds wait);

} // namespace vldb98
