/// The thin statement interface over which the record operations are written once for every SQL engine.
///
/// A connection and its statements belong to one thread. Nothing here throws on an error of the database: it is
/// reported by the result, and its text can be asked for.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace vldb98 {

enum DBENGINE : int32_t {
  ZELK_ENG_DEFAULT = 0, ///< the engine in use
  ZELK_ENG_BTRIEVE = 1, ///< the file-based engine: the embedded database
  ZELK_ENG_MYSQL = 2,
  ZELK_ENG_MSSQL = 3,
};

enum class Step { Row, Done, Failed };

/// What became of a statement that failed.
enum class Failure : uint8_t {
  Other,
  Duplicate,  ///< a unique key is in use; nothing else happened
  OutOfRange, ///< a number that its column cannot hold
  Retry,      ///< others were in the way; a transaction that was open is rolled back
  Lost,       ///< the connection is gone, and its transaction and locks with it
};

struct Dialect;

class SqlStatement {
public:
  virtual ~SqlStatement() = default;

  /// Parameters count from 1: "?" is the one after the greatest so far, "?3" the third, also where it stands several
  /// times. A text must stay where it is until the next reset().
  virtual void bind(int parameter, int64_t value) = 0;
  virtual void bind(int parameter, std::string_view utf8) = 0;
  virtual void bindNull(int parameter) = 0;

  virtual Step step() = 0;
  /// Ends the execution and keeps the parameters.
  virtual void reset() = 0;

  /// Columns of the row under the statement, from 0. A text is valid until the next step() or reset().
  virtual bool isNull(int column) = 0;
  virtual int64_t integer(int column) = 0;
  /// The same, or nothing for NULL.
  virtual std::optional<int64_t> number(int column) {
    return isNull(column) ? std::nullopt : std::optional(integer(column));
  }
  virtual std::string_view text(int column) = 0;
};

/// A statement must not stay open after an operation: it would hold a read transaction.
class Execution {
public:
  explicit Execution(SqlStatement &statement) : statement_(statement) {}
  ~Execution() { statement_.reset(); }
  Execution(const Execution &) = delete;
  Execution &operator=(const Execution &) = delete;

private:
  SqlStatement &statement_;
};

class SqlConnection {
public:
  virtual ~SqlConnection() = default;

  /// \return null when the statement is not accepted
  virtual std::unique_ptr<SqlStatement> prepare(const std::string &sql) = 0;
  virtual bool execute(const std::string &sql) = 0;
  /// \param snapshot to read in one state, without the intention to write
  virtual bool begin(bool snapshot) = 0;
  virtual bool commit() = 0;
  virtual bool rollback() = 0;
  /// False also when the engine gave a transaction up by itself, as after a full disk.
  virtual bool inTransaction() = 0;
  /// Rows that the last insert, update or delete changed.
  virtual int64_t changedRows() = 0;

  /// In a transaction: a number that is another one after whoever has committed a change of anything; nothing where
  /// that is not known without asking for what may have changed.
  virtual std::optional<uint64_t> stateVersion() { return std::nullopt; }

  virtual const Dialect &dialect() const = 0;
  /// The server is a node of a cluster, whose transactions can fail because of what another node committed.
  virtual bool onCluster() const { return false; }
  /// Gives the running transaction up as one that others were in the way of.
  virtual void collided() { rollback(); }
  /// The server's number of this connection; 0 where there is none.
  virtual int64_t number() const { return 0; }
  /// Of the statement that failed last since the last begin(); Other when none has.
  virtual Failure failure() const { return Failure::Other; }
  /// False when it is lost for good: everything fails from then on. Also when the file that it has open is not the one
  /// under its name any more: what is written would be gone.
  virtual bool usable() const { return true; }
};

} // namespace vldb98
