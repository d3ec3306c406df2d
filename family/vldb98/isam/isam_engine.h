/// The record operations on any SQL engine.
#pragma once

#include <array>
#include <map>
#include <memory>
#include <vector>

#include "isam/engine.h"
#include "isam/kept_reads.h"
#include "isam/rows.h"
#include "sql/dialect.h"
#include "sql/sql.h"

namespace vldb98 {

/// Keeps, for every table, a copy of the current record; a step is one indexed seek from that record's key, so no
/// cursor and no read transaction stays open between two calls.
class IsamEngine final : public Engine {
public:
  IsamEngine(std::unique_ptr<SqlConnection> connection, std::unique_ptr<Locks> locks);
  ~IsamEngine() override;

  DBENGINE kind() const override { return dialect_.engine; }
  void setScope(uint16_t client, int year) override;
  bool read(ReadOp op, FileNumber file, const SCHLUESSEL *key, const SCHLUESSEL *upper, DATENBANK *record,
            bool &found) override;
  bool readAhead(std::span<const LookUp> wanted) override;
  bool sum(FileNumber file, const SCHLUESSEL &lower, const SCHLUESSEL &upper, std::span<const int> fields,
           std::span<int64_t> sums) override;
  void setCurrent(int table, const DATENBANK &record) override;
  bool change(ChangeOp op, FileNumber file, DATENBANK *record) override;
  bool insertAll(FileNumber file, const char *records, size_t count) override;
  bool deleteBeginning(FileNumber file, const SCHLUESSEL &key, int fields) override;
  bool transaction(TransactionOp op, bool snapshot) override;
  int transactionDepth() const override { return depth_; }
  bool table(TableOp op, int number) override;
  bool tableExists(int number, bool &exists) override;
  bool lock(std::span<const LockName> names, LockMode mode) override { return locks_->acquire(names, mode); }
  void unlock(std::span<const uint16_t> tables, bool atOnce) override;
  bool holdsLocks() const override { return locks_->holdsAny(); }
  bool usable() const override { return connection_->usable(); }
  Failure failure() const override { return connection_->failure(); }
  bool commitUnanswered() const override { return commitUnanswered_; }
  SessionTrace trace() const override { return {connection_->number(), locks_->lastTable()}; }
  void endLost(const SessionTrace &lost) override {
    if (lost.connection) locks_->endHolder(lost.lock, lost.connection);
  }

private:
  using Statement = std::unique_ptr<SqlStatement>;
  static constexpr size_t kReadOps = size_t(ReadOp::Exists) + 1;

  struct TableState {
    // By key index: the operations, then Next with a bound; all of them once more for reads that keep others from
    // writing.
    std::map<int, std::array<Statement, 2 * (kReadOps + 1)>> reads;
    Statement insert, update, remove, greatest, assigned, insertNumbered, clear;
    std::map<std::array<int, 3>, Statement> blocks;     // by key index, operation (behind them: bounded Next) and rows
    std::map<size_t, Statement> inserts;                // of several records, by their count
    std::map<std::pair<int, int>, Statement> deletions; // of what begins with a key: by key index and count of fields
    std::map<std::pair<int, std::vector<int>>, Statement> sums; // by key index and fields
    std::vector<char> current;                                  // empty: no current record
    int rangeKey = -1;                                          // key index of a running range
    bool rangeEmpty = false;
    SCHLUESSEL rangeUpper;
    ReadBlock block; // only on servers
  };

  SqlStatement *prepared(Statement &statement, const std::string &text);
  SqlStatement *readStatement(const Table &table, const Key &key, ReadOp op, bool bounded);
  /// Begins the parameters of a statement; bindScopeBehind stands behind others.
  int bindScope(SqlStatement &statement, const Table &table, int parameter);
  int bindScopeBehind(SqlStatement &statement, const Table &table, int parameter);
  int bindKey(SqlStatement &statement, const Table &table, const std::vector<int> &fields, const SCHLUESSEL &values,
              int parameter);
  bool bindFields(SqlStatement &statement, const Table &table, const std::vector<int> &fields, const char *record,
                  int &parameter);
  bool bindRow(SqlStatement &statement, const Table &table, const char *record, int &parameter);
  bool readRow(SqlStatement &statement, const Table &table, TableState &state, DATENBANK &record);
  /// What is read must still hold when it is written, where several write at once.
  bool keepsRows() const { return dialect_.locksRows && depth_ > 0 && !snapshot_; }
  const KeptReads::Answer *kept(ReadOp op, FileNumber file, const SCHLUESSEL &key) const;
  bool readTogether(std::span<const LookUp> wanted);
  bool step(ReadOp op, const Table &table, const Key &key, DATENBANK &record, bool &found);
  bool readRange(const Table &table, const Key &key, const SCHLUESSEL &lower, const SCHLUESSEL &upper,
                 DATENBANK &record, bool &found);
  void deliverRow(const Table &table, DATENBANK &record, bool found);
  bool readBlock(SqlStatement &statement, const Table &table, bool &found);
  /// Rows of the table that were read for later are out of date.
  void forgetAhead(const Table &table);
  void forgetBlocks();
  bool execute(SqlStatement &statement);
  bool beginNow(bool snapshot);
  /// Begins a transaction that waits for its first statement.
  bool begin() { return depth_ == 0 || begun_ || beginNow(false); }
  /// The same for a change. False also when the database gave the transaction up by itself: what is changed now would
  /// be committed at once.
  bool beginChange() { return begin() && (depth_ == 0 || connection_->inTransaction()); }
  /// Does a change that is more than one statement, or has to be in a transaction for another reason.
  template <class Work> bool inTransaction(bool needed, Work &&work);
  /// Whether a client is open, and a fiscal year, where the table's rows belong to one.
  bool inScope(const Table &table) const {
    return table.scope == Scope::Global || (client_ != 0 && (table.scope == Scope::Client || year_ != 0));
  }
  bool insert(const Table &table, DATENBANK &record);
  bool insertAssigned(const Table &table, DATENBANK &record);
  bool writeRow(const Table &table, const char *record);
  bool assignNumber(const Table &table, char *record);
  /// \return 0 when the statement failed
  int64_t lowestFreeNumber(const Table &table, const char *record);
  SqlStatement *insertNumberedStatementOf(const Table &table);
  bool insertNumbered(SqlStatement &statement, const Table &table, char *record);
  bool writeRows(const Table &table, const char *records, size_t count);
  bool changeCurrent(ChangeOp op, const Table &table, DATENBANK *record);

  std::unique_ptr<SqlConnection> connection_;
  const Dialect &dialect_;
  std::unique_ptr<Locks> locks_;
  std::array<TableState, kTableLimit> tables_;
  Statement tableExists_;
  Scratch scratch_;
  std::vector<std::unique_ptr<Scratch>> rowScratch_; // of records that are inserted together
  KeptReads kept_;
  std::map<std::vector<std::pair<ReadOp, FileNumber>>, Statement> lookUps_; // by what is read together
  uint16_t client_ = 0;
  int year_ = 0;
  int depth_ = 0;
  bool begun_ = false;    // the database's transaction
  bool snapshot_ = false; // the transaction only reads
  bool doomed_ = false;   // an inner transaction was rolled back
  bool commitUnanswered_ = false;
  std::vector<LockName> pendingUnlocks_;
};

} // namespace vldb98
