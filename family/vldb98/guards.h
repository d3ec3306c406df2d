/// What must not outlive a scope: a transaction, the locks on tables.
#pragma once

#include <span>

#include "vldb98/store.h"

namespace vldb98 {

/// Rolled back at its end unless it was committed.
class Transaction {
public:
  /// \param snapshot to read several tables in one state, without the intention to write
  Transaction(Store &store, bool snapshot)
      : store_(store), open_(store.Transaktion(1, snapshot, ZELK_ENG_DEFAULT) != 0) {}
  ~Transaction() { rollback(); }
  Transaction(const Transaction &) = delete;
  Transaction &operator=(const Transaction &) = delete;

  bool isOpen() const { return open_; }
  bool commit() { return end(2); }
  bool rollback() { return end(4); }

private:
  bool end(int operation) {
    if (!open_) return false;
    open_ = false;
    return store_.Transaktion(operation, 0, ZELK_ENG_DEFAULT) != 0;
  }

  Store &store_;
  bool open_;
};

/// Holds tables of the open client, all of them or none. Who changes several of them takes them in the order in which a
/// posting does, or two callers wait for each other.
class LockedTables {
public:
  LockedTables(Store &store, std::span<const FileNumber> tables)
      : store_(store), tables_(tables), held_(store.Lock(tables, ZELK_ENG_DEFAULT)) {}
  ~LockedTables() {
    constexpr int atOnce = 1;
    if (held_) store_.Unlock(tables_, atOnce, ZELK_ENG_DEFAULT);
  }
  LockedTables(const LockedTables &) = delete;
  LockedTables &operator=(const LockedTables &) = delete;
  bool held() const { return held_; }

private:
  Store &store_;
  std::span<const FileNumber> tables_;
  bool held_;
};

} // namespace vldb98
