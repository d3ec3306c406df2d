#include "sqlite/sqlite_connection.h"

#include <sqlite3.h>

#include <algorithm>

#include "platform/files.h"
#include "platform/system.h"
#include "sql/dialect.h"

static_assert(SQLITE_VERSION_NUMBER >= 3051003, "earlier versions can corrupt a write-ahead-log database");

namespace vldb98 {
namespace {

// Marks the file as this library's, for file(1) and for the check when it is opened.
constexpr int kApplicationId = 0x5A4C3938; // "ZL98"

struct CloseConnection {
  void operator()(sqlite3 *connection) const { sqlite3_close_v2(connection); }
};
using Handle = std::unique_ptr<sqlite3, CloseConnection>;

class SqliteStatement final : public SqlStatement {
public:
  explicit SqliteStatement(sqlite3_stmt *statement) : statement_(statement) {}
  ~SqliteStatement() override { sqlite3_finalize(statement_); }

  void bind(int parameter, int64_t value) override { sqlite3_bind_int64(statement_, parameter, value); }
  void bind(int parameter, std::string_view utf8) override {
    // A null pointer would bind NULL in place of the empty text.
    sqlite3_bind_text(statement_, parameter, utf8.data() ? utf8.data() : "", int(utf8.size()), SQLITE_STATIC);
  }
  void bindNull(int parameter) override { sqlite3_bind_null(statement_, parameter); }

  Step step() override {
    switch (sqlite3_step(statement_)) {
    case SQLITE_ROW:
      return Step::Row;
    case SQLITE_DONE:
      return Step::Done;
    default:
      return Step::Failed;
    }
  }
  void reset() override { sqlite3_reset(statement_); }

  bool isNull(int column) override { return sqlite3_column_type(statement_, column) == SQLITE_NULL; }
  int64_t integer(int column) override { return sqlite3_column_int64(statement_, column); }
  // NULL is read as zero.
  std::optional<int64_t> number(int column) override {
    const int64_t value = integer(column);
    return value == 0 && isNull(column) ? std::nullopt : std::optional(value);
  }
  std::string_view text(int column) override {
    auto text = reinterpret_cast<const char *>(sqlite3_column_text(statement_, column));
    return text ? std::string_view(text, size_t(sqlite3_column_bytes(statement_, column))) : std::string_view{};
  }

private:
  sqlite3_stmt *statement_;
};

class SqliteConnection final : public SqlConnection {
public:
  SqliteConnection(Handle handle, const std::string &path, std::chrono::milliseconds wait)
      : handle_(std::move(handle)), path_(path), file_(platform::fileIdentity(path)), wait_(wait) {
    sqlite3_busy_handler(handle_.get(), &SqliteConnection::onBusy, this);
  }

  std::unique_ptr<SqlStatement> prepare(const std::string &sql) override {
    sqlite3_stmt *statement = nullptr;
    int result = sqlite3_prepare_v3(handle_.get(), sql.c_str(), int(sql.size()) + 1, SQLITE_PREPARE_PERSISTENT,
                                    &statement, nullptr);
    return result == SQLITE_OK && statement ? std::make_unique<SqliteStatement>(statement) : nullptr;
  }
  bool execute(const std::string &sql) override {
    return sqlite3_exec(handle_.get(), sql.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK;
  }
  bool begin(bool snapshot) override {
    return snapshot ? run(beginReading_, "BEGIN") : run(beginWriting_, "BEGIN IMMEDIATE");
  }
  bool commit() override { return run(commit_, "COMMIT"); }
  bool rollback() override { return execute("ROLLBACK"); }
  bool inTransaction() override { return sqlite3_get_autocommit(handle_.get()) == 0; }
  // SQLite's own count of what others have changed, which its first read brings up to date, and that of its cache,
  // which counts this connection's changes as well.
  std::optional<uint64_t> stateVersion() override {
    if (!dataVersion_) dataVersion_ = prepare("PRAGMA data_version");
    if (!dataVersion_) return std::nullopt;
    Execution execution(*dataVersion_);
    uint32_t ofCache = 0;
    if (dataVersion_->step() != Step::Row ||
        sqlite3_file_control(handle_.get(), "main", SQLITE_FCNTL_DATA_VERSION, &ofCache) != SQLITE_OK)
      return std::nullopt;
    return uint64_t(dataVersion_->integer(0)) << 32 | ofCache;
  }
  int64_t changedRows() override { return sqlite3_changes64(handle_.get()); }
  const Dialect &dialect() const override { return sqliteDialect(); }
  // Not SQLite's own test, which looks for the file where links led to when it was opened.
  bool usable() const override { return file() == platform::fileIdentity(path_); }
  const platform::FileIdentity &file() const { return file_; }

private:
  // SQLite's own waiting sleeps in steps of up to 100 ms, a long time beside a posting.
  static int onBusy(void *self, int attempt) {
    auto &connection = *static_cast<SqliteConnection *>(self);
    uint64_t now = platform::steadyMilliseconds();
    if (attempt == 0) connection.deadline_ = now + uint64_t(connection.wait_.count());
    if (now >= connection.deadline_) return 0;
    platform::sleepMicroseconds(std::min(50u << std::min(attempt, 7), 4000u));
    return 1;
  }

  // What every transaction needs is prepared once: to parse it costs as much as to read a record.
  bool run(std::unique_ptr<SqlStatement> &statement, const char *sql) {
    if (!statement) statement = prepare(sql);
    if (!statement) return false;
    Execution execution(*statement);
    return statement->step() == Step::Done;
  }

  Handle handle_;
  std::unique_ptr<SqlStatement> beginReading_, beginWriting_, commit_, dataVersion_; // end before the handle
  std::string path_;
  platform::FileIdentity file_;
  std::chrono::milliseconds wait_;
  uint64_t deadline_ = 0;
};

int64_t pragma(SqlConnection &connection, const char *name) {
  auto statement = connection.prepare(std::string("PRAGMA ") + name);
  return statement && statement->step() == Step::Row ? statement->integer(0) : -1;
}

bool markAsOurs(SqlConnection &connection) {
  return connection.execute("PRAGMA application_id=" + std::to_string(kApplicationId));
}

} // namespace

std::unique_ptr<SqlConnection> openSqlite(const std::string &path, const SqliteOptions &options) {
  if (sqlite3_libversion_number() != SQLITE_VERSION_NUMBER) return nullptr;
  // Not left to SQLite, whose answer would not tell a missing file from a damaged one.
  bool exists = platform::isFile(path);
  const platform::FileIdentity before = platform::fileIdentity(path);
  if (!exists && !options.create) return nullptr;
  sqlite3 *raw = nullptr;
  int flags = SQLITE_OPEN_READWRITE | (options.create ? SQLITE_OPEN_CREATE : 0) | SQLITE_OPEN_NOMUTEX;
  int result = sqlite3_open_v2(path.c_str(), &raw, flags, nullptr);
  Handle handle(raw);
  if (result != SQLITE_OK || sqlite3_db_readonly(raw, "main") != 0) return nullptr;
  auto connection = std::make_unique<SqliteConnection>(std::move(handle), path, options.wait);

  // Replaced just now.
  if (exists && connection->file() != before) return nullptr;
  if (!exists && !markAsOurs(*connection)) return nullptr;
  if (pragma(*connection, "application_id") != kApplicationId) return nullptr;
  bool shared = platform::isNetworkFolder(path.substr(0, path.find_last_of("/\\") + 1));
  if (!connection->execute(shared ? "PRAGMA journal_mode=DELETE" : "PRAGMA journal_mode=WAL")) return nullptr;
  if (!connection->execute(options.durable ? "PRAGMA synchronous=FULL" : "PRAGMA synchronous=OFF")) return nullptr;
  return connection;
}

} // namespace vldb98
