/// The record operations on any SQL engine.
#pragma once

#include <array>
#include <map>
#include <memory>
#include <vector>

#include "isam/engine.h"
#include "isam/read_block.h"
#include "isam/rows.h"
#include "sql/dialect.h"
#include "sql/sql.h"

namespace vldb98 {

/// Keeps, for every table, a copy of the current record; a step is one indexed seek from that record's key, so no
/// cursor and no read transaction stays open between two calls. As it stands it is the engine of an embedded database,
/// which has one writer at a time and answers at once.
class IsamEngine : public Engine {
public:
  /// How long rows that were read for the steps to come may be older than what other processes have stored since:
  /// longer than a walk needs for them, shorter than anybody could notice.
  static constexpr uint64_t kBlockLife = 5; ///< milliseconds

  IsamEngine(std::unique_ptr<SqlConnection> connection, std::unique_ptr<Locks> locks, uint64_t blockLife = kBlockLife);
  ~IsamEngine() override;

  DBENGINE kind() const override { return dialect_.engine; }
  void setScope(uint16_t client, int year) override;
  bool read(ReadOp op, FileNumber file, const SCHLUESSEL *key, const SCHLUESSEL *upper, DATENBANK *record,
            bool &found) override;
  bool readAhead(std::span<const LookUp>) override { return true; }
  bool sum(FileNumber file, const SCHLUESSEL &lower, const SCHLUESSEL &upper, std::span<const int> fields,
           std::span<int64_t> sums) override;
  void setCurrent(int table, const DATENBANK &record) override;
  bool change(ChangeOp op, FileNumber file, DATENBANK *record) override;
  bool insertAll(FileNumber file, const char *records, size_t count) override;
  bool deleteBeginning(FileNumber file, const SCHLUESSEL &key, int fields) override;
  bool transaction(TransactionOp op, bool snapshot) override;
  int transactionDepth() const override { return int(outer_.size()); }
  std::optional<uint64_t> stateVersion() override;
  bool table(TableOp op, int number) override;
  bool tableExists(int number, bool &exists) override;
  bool lock(std::span<const LockName> names, LockMode mode) override { return locks_->acquire(names, mode); }
  void unlock(std::span<const uint16_t> tables, bool atOnce) override;
  bool holdsLocks() const override { return locks_->holdsAny(); }
  bool usable() const override { return connection_->usable(); }
  Failure failure() const override { return connection_->failure(); }
  bool commitUnanswered() const override { return false; }
  SessionTrace trace() const override { return {}; }
  void endLost(const SessionTrace &) override {}

protected:
  using Statement = std::unique_ptr<SqlStatement>;
  static constexpr size_t kReadOps = size_t(ReadOp::Exists) + 1;

  struct TableState {
    // By key index: the operations, then Next with a bound; all of them once more for reads that keep others from
    // writing.
    std::map<int, std::array<Statement, 2 * (kReadOps + 1)>> reads;
    Statement insert, update, remove, greatest, assigned, clear;
    std::map<std::pair<int, int>, Statement> deletions; // of what begins with a key: by key index and count of fields
    std::map<std::pair<int, std::vector<int>>, Statement> sums; // by key index and fields
    std::vector<char> current;                                  // empty: no current record
    int rangeKey = -1;                                          // key index of a running range
    bool rangeEmpty = false;
    SCHLUESSEL rangeUpper;
    std::map<std::array<int, 3>, Statement> blocks; // by key index, operation (after them: bounded Next) and rows
    ReadBlock block;
  };

  /// A read that is possible: what it compares with is there.
  struct ReadRequest {
    ReadOp op;
    FileNumber file;
    const Table &table;
    const Key &order;
    const SCHLUESSEL *key, *upper;
    bool bounded; ///< a step in a range, which ends with it
  };
  virtual bool readRow(const ReadRequest &asked, DATENBANK *record, bool &found);

  /// What is read must still hold when it is written, where several write at once.
  virtual bool keepsRows() const { return false; }
  /// A transaction that is to write begins with its first statement: the one writer of the database would keep the
  /// holders of locks that are waited for until then from writing.
  virtual bool beginsLate() const { return true; }
  /// Told before rows of the table change.
  virtual void tableChanges(const Table &table);
  /// Told where what was read may have changed since: another scope, the beginning and the end of a transaction.
  void stateChanges();
  /// Told when locks are let go, or what they guarded was not committed.
  virtual void guardsEnd() {}
  /// Told when a COMMIT of changes failed.
  virtual void commitFailed() {}
  /// Inserts with the next number in the assigned field. In a transaction.
  virtual bool insertAssigned(const Table &table, DATENBANK &record);
  virtual bool insertRows(const Table &table, const char *records, size_t count);

  SqlStatement *prepared(Statement &statement, const std::string &text);
  /// Begins the parameters of a statement; bindScopeAfter goes on after others.
  int bindScope(SqlStatement &statement, const Table &table, int parameter);
  int bindScopeAfter(SqlStatement &statement, const Table &table, int parameter);
  int bindKey(SqlStatement &statement, const Table &table, const std::vector<int> &fields, const SCHLUESSEL &values,
              int parameter);
  bool bindFields(SqlStatement &statement, const Table &table, const std::vector<int> &fields, const char *record,
                  int &parameter);
  TableState &stateOf(const Table &table) { return tables_[size_t(table.number)]; }
  void makeCurrent(const Table &table, const char *record) {
    stateOf(table).current.assign(record, record + table.recordSize);
  }
  /// Begins a transaction that waits for its first statement.
  bool begin() { return outer_.empty() || begun_ || beginNow(false); }
  /// The same for a change. False also when the database gave the transaction up by itself: what is changed now would
  /// be committed at once.
  bool beginChange() { return begin() && (outer_.empty() || connection_->inTransaction()); }
  bool inTransaction() const { return !outer_.empty(); }
  bool execute(SqlStatement &statement);
  bool writeRow(const Table &table, const char *record);
  /// Puts the number after the greatest one into the record.
  bool assignNumber(const Table &table, char *record);
  static int32_t assignedNumber(const Table &table, const char *record);
  static void putAssignedNumber(const Table &table, char *record, int64_t number);

  std::unique_ptr<SqlConnection> connection_;
  const Dialect &dialect_;
  std::unique_ptr<Locks> locks_;
  Scratch scratch_;
  uint16_t client_ = 0;
  bool snapshot_ = false;                // the transaction only reads
  std::vector<LockName> pendingUnlocks_; // with the end of the transaction

private:
  SqlStatement *readStatement(const ReadRequest &asked);
  bool bindRow(SqlStatement &statement, const Table &table, const char *record, int &parameter);
  bool deliver(SqlStatement &statement, const Table &table, DATENBANK &record);
  bool step(const ReadRequest &asked, DATENBANK &record, bool &found);
  bool readRange(const ReadRequest &asked, DATENBANK &record, bool &found);
  bool readBlock(SqlStatement &statement, const Table &table, bool &found);
  void deliverRow(const Table &table, DATENBANK &record);
  bool beginNow(bool snapshot);
  bool endInner(bool committed, bool savepoint);
  bool endOuter(bool committed);
  /// Does a change that is more than one statement, or has to be in a transaction for another reason.
  template <class Work> bool whole(bool needed, Work &&work);
  /// Whether a client is open, and a fiscal year, where the table's rows belong to one.
  bool inScope(const Table &table) const {
    return table.scope == Scope::Global || (client_ != 0 && (table.scope == Scope::Client || year_ != 0));
  }
  bool insert(const Table &table, DATENBANK &record);
  /// \return 0 when the statement failed
  int64_t lowestFreeNumber(const Table &table, const char *record);
  bool changeCurrent(ChangeOp op, const Table &table, DATENBANK *record);

  std::array<TableState, kTableLimit> tables_;
  std::vector<int> walked_; // tables with a block
  Statement tableExists_;
  int year_ = 0;
  std::vector<bool> outer_; // transactions under way: whether a savepoint stands at the beginning of each
  bool begun_ = false;      // the database's transaction
  bool doomed_ = false;     // an inner transaction could not be undone by itself
};

} // namespace vldb98
