/// The few primitives on which the record store's operations (store.h) rest. An engine keeps the current record of
/// every table, the scope and the locks of one session; it belongs to one thread.
#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "locks/locks.h"
#include "records/keys.h"
#include "records/schema.h"

namespace vldb98 {

enum class ReadOp : uint8_t {
  First, ///< in key order
  Last,
  Next, ///< after the current record; after Range only as far as its upper key
  Prev,
  Ge,        ///< first with key >= the given one
  Le,        ///< last with key <= the given one
  Range,     ///< first with key between the given ones, both included
  StepFirst, ///< in the order of the table itself
  StepNext,
  Exact,  ///< with exactly this key
  Exists, ///< the same without delivering it: the current record stays
};

enum class ChangeOp : uint8_t { Insert, Update, Delete };
enum class TransactionOp : uint8_t { Begin = 1, Commit = 2, Rollback = 4 };
enum class TableOp : uint8_t {
  Create, ///< in the database; done when it is there already
  Drop,   ///< with the rows of all clients
  Clear,  ///< the rows of the scope
};

/// What a session can be told by at its server.
struct SessionTrace {
  int64_t connection = 0; ///< the server's number of it; 0: there is no server
  LockName lock;          ///< the last that it took on a table
};

/// A read that will be asked for: Exact, Ge or Le, or Exists by a unique key.
struct LookUp {
  ReadOp op;
  FileNumber file;
  SCHLUESSEL key;
};

class Engine {
public:
  virtual ~Engine() = default;

  virtual DBENGINE kind() const = 0;

  /// The client and fiscal year (calendar year in which it begins) whose rows are meant from now on. The current
  /// records of tables that the change concerns are forgotten.
  virtual void setScope(uint16_t client, int year) = 0;

  /// \param key,upper where the operation takes them, else null
  /// \param record    receives the record found, which becomes the table's current one; null for Exists
  /// \param found     false when there is no such record; the buffer and the current record then stay as they were
  /// \return false when the read failed
  virtual bool read(ReadOp op, FileNumber file, const SCHLUESSEL *key, const SCHLUESSEL *upper, DATENBANK *record,
                    bool &found) = 0;

  /// Where every read is a way to a server: reads several records at once, which reads of the same file number and key
  /// are then served from. That lasts while nobody else writes the tables: it does nothing unless the session holds
  /// locks, and what was read is forgotten when it lets one go, changes the table, or changes the scope. What a change
  /// may follow is served only of tables that the session has locked itself.
  /// \return false when a read failed
  virtual bool readAhead(std::span<const LookUp> wanted) = 0;

  /// Adds fields up, numbers or money (in hundredths, an empty one counts as zero), over the records whose key lies
  /// between the given ones, both included, in one step whatever their number; zeros when there is none. The current
  /// record of the table stays where it was.
  /// \param lower,upper alike in all fields of the key but the last
  /// \param fields      indexes of the fields in the table
  /// \param sums        as many as fields
  virtual bool sum(FileNumber file, const SCHLUESSEL &lower, const SCHLUESSEL &upper, std::span<const int> fields,
                   std::span<int64_t> sums) = 0;

  /// Makes a record that was read earlier the current one of its table again; it is not read.
  virtual void setCurrent(int table, const DATENBANK &record) = 0;

  /// Insert and Update write the buffer, Update and Delete act on the current record.
  virtual bool change(ChangeOp op, FileNumber file, DATENBANK *record) = 0;

  /// Inserts records of a table that assigns no numbers, on a server in few steps; only inside a transaction, which has
  /// to be rolled back when it fails. The last one becomes the current record. \param records one after the other,
  /// each as long as the table's record
  virtual bool insertAll(FileNumber file, const char *records, size_t count) = 0;

  /// Deletes every record whose key begins with the first fields of the key given, at least one of them, in one step
  /// whatever their number; done also when there is none. The current record of the table stays where it was.
  virtual bool deleteBeginning(FileNumber file, const SCHLUESSEL &key, int fields) = 0;

  /// Transactions nest: the outermost one is the database's, an inner one a part of it that can be rolled back alone.
  /// On the embedded database one that is to write begins with its first read or change, so that locks waited for
  /// before that keep no other writer waiting, and all of it sees what their holders left. \param snapshot begins
  /// without the intention to write
  virtual bool transaction(TransactionOp op, bool snapshot) = 0;
  virtual int transactionDepth() const = 0;

  /// In a transaction that has not changed anything: a number that is another one when anything was committed since.
  /// Nothing where that costs as much as to read again.
  virtual std::optional<uint64_t> stateVersion() { return std::nullopt; }

  virtual bool table(TableOp op, int number) = 0;
  virtual bool tableExists(int number, bool &exists) = 0;

  /// All of the locks, in the order given, or none.
  virtual bool lock(std::span<const LockName> names, LockMode mode) = 0;
  /// Releases what is held on tables, of whatever client. Inside a transaction it takes effect at its end, so that
  /// nobody sees the tables before the change is committed, unless at once is asked for.
  virtual void unlock(std::span<const uint16_t> tables, bool atOnce) = 0;
  virtual bool holdsLocks() const = 0;

  /// False when the connection to a server is lost: everything fails from then on, and locks and transaction are gone.
  /// Also when the embedded database's file was removed, renamed or replaced, itself or one of its folders.
  virtual bool usable() const = 0;
  /// Why a transaction that was not carried out was not.
  virtual Failure failure() const = 0;
  /// True when the connection was lost with a COMMIT of changes: nobody has said whether they are stored.
  virtual bool commitUnanswered() const = 0;

  virtual SessionTrace trace() const = 0;
  /// Ends a session that lost its connection, at a server that has not noticed and keeps its locks for it. The lock
  /// tells that it is the one: its number alone is given anew by another server, or the same one later.
  virtual void endLost(const SessionTrace &lost) = 0;
};

} // namespace vldb98
