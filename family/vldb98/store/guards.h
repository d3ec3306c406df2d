/// What must not outlive a scope: a transaction, the locks on tables.
#pragma once

#include <optional>
#include <span>

#include "store/typed.h"

namespace vldb98 {

/// Rolled back at its end unless it was committed.
class Transaction {
public:
  /// \param snapshot to read several tables in one state, without the intention to write
  Transaction(Store &store, bool snapshot) : store_(store), open_(store.Transaktion(1, snapshot) != 0) {}
  ~Transaction() { rollback(); }
  Transaction(const Transaction &) = delete;
  Transaction &operator=(const Transaction &) = delete;

  bool isOpen() const { return open_; }
  bool commit() { return end(2); }
  bool rollback() { return end(4); }
  /// Commits what was done, rolls back what was not. \return whether it was done and is committed
  bool finish(bool done) { return end(done ? 2 : 4) && done; }

private:
  bool end(int operation) {
    if (!open_) return false;
    open_ = false;
    return store_.Transaktion(operation, 0) != 0;
  }

  Store &store_;
  bool open_;
};

/// Between begin and end, what is read from the embedded database is of one state, and costs one look at its log
/// instead of one each. On a server nothing is begun: what is read so is one record each, and a transaction would cost
/// two or three ways to it.
class ReadingOneState {
public:
  explicit ReadingOneState(Store &store) : store_(store) {}
  void begin() {
    if (!store_.IsUsedEngineSQL()) must(reading_.emplace(store_, true).isOpen());
  }
  void end() {
    const bool ended = !reading_ || reading_->commit();
    reading_.reset();
    must(ended);
  }

  /// Begins; gives up at its end what has not ended by then.
  class Scope {
  public:
    explicit Scope(ReadingOneState &its) : its_(its) { its_.begin(); }
    ~Scope() { its_.reading_.reset(); }
    Scope(const Scope &) = delete;
    Scope &operator=(const Scope &) = delete;

  private:
    ReadingOneState &its_;
  };

private:
  Store &store_;
  std::optional<Transaction> reading_;
};

/// Reads between its begin and its end.
template <class Read> auto inOneState(Store &store, Read &&read) {
  ReadingOneState state(store);
  const ReadingOneState::Scope scope(state);
  auto result = read();
  state.end();
  return result;
}

/// Holds tables of the open client, all of them or none. Who changes several of them takes them in the order in which a
/// posting does, or two callers wait for each other. A transaction around it keeps them to its end.
class LockedTables {
public:
  LockedTables(Store &store, std::span<const FileNumber> tables) : LockedTables(store, tables, tables) {}
  /// \param release the tables in the order in which they are let go
  LockedTables(Store &store, std::span<const FileNumber> tables, std::span<const FileNumber> release)
      : store_(store), release_(release), held_(store.Lock(tables)) {}
  ~LockedTables() {
    constexpr int atTheEnd = 0;
    if (held_) store_.Unlock(release_, atTheEnd);
  }
  LockedTables(const LockedTables &) = delete;
  LockedTables &operator=(const LockedTables &) = delete;
  bool held() const { return held_; }

private:
  Store &store_;
  std::span<const FileNumber> release_;
  bool held_;
};

} // namespace vldb98
