#include "odbc/odbc_connection.h"

#include <atomic>

#include "odbc/connection_string.h"
#include "odbc/odbc_statement.h"
#include "sql/dialect.h"

namespace vldb98 {
namespace odbc {
namespace {

std::atomic<uint64_t> tripsOfAll{0};

class Connection final : public SqlConnection, public Session {
public:
  explicit Connection(const Dialect &dialect) : dialect_(&dialect) {}
  ~Connection() override {
    if (connected_) SQLDisconnect(handle_.get());
  }

  bool connect(const ServerSettings &server);
  bool setUp(std::chrono::milliseconds wait, std::string &database);

  std::unique_ptr<SqlStatement> prepare(const std::string &sql) override {
    MarkedText marked = markedText(sql);
    StatementHandle statement = prepared(marked.text);
    return statement ? std::make_unique<OdbcStatement>(*this, std::move(statement), std::move(marked)) : nullptr;
  }

  bool execute(const std::string &sql) override {
    if (lost_) return false;
    StatementHandle statement(handle_.get());
    if (!statement) return false;
    std::u16string text;
    appendUtf16(text, sql);
    sent();
    const SQLRETURN done = SQLExecDirectW(statement.get(), wide(text), SQLINTEGER(text.size()));
    if (done == SQL_NO_DATA || SQL_SUCCEEDED(done)) return true;
    failed(statement);
    return false;
  }

  bool begin(bool snapshot) override {
    failure_ = Failure::Other;
    for (const std::string &sql : snapshot ? dialect_->beginSnapshot : dialect_->begin)
      if (!execute(sql)) return false;
    return inTransaction_ = true;
  }
  bool commit() override {
    const bool done = execute(dialect_->commit);
    if (done) inTransaction_ = false;
    return done;
  }
  bool rollback() override {
    inTransaction_ = false;
    return execute(dialect_->rollback);
  }
  bool inTransaction() override { return inTransaction_; }
  int64_t changedRows() override { return changedRows_; }
  const Dialect &dialect() const override { return *dialect_; }
  bool onCluster() const override { return onCluster_; }
  void collided() override {
    rollback();
    failure_ = lost_ ? Failure::Lost : Failure::Retry;
  }
  int64_t number() const override { return number_; }
  Failure failure() const override { return failure_; }
  bool usable() const override { return !lost_; }

private:
  bool alive() const override { return !lost_; }
  bool takesUtf8() const override { return dialect_->takesUtf8; }
  void sent() override { ++tripsOfAll; }
  void succeeded(int64_t rows) override { changedRows_ = rows; }
  StatementHandle prepared(std::u16string &text) override {
    StatementHandle statement;
    if (lost_) return statement;
    statement = StatementHandle(handle_.get());
    if (statement && !SQL_SUCCEEDED(SQLPrepareW(statement.get(), wide(text), SQLINTEGER(text.size()))))
      failed(statement);
    else if (onCluster_ && inTransaction_ && !stillInTransaction())
      statement = StatementHandle();
    return statement;
  }
  bool stillInTransaction();
  void failed(StatementHandle &statement) override;
  Failure meaningOf(SQLHANDLE statement);
  std::vector<std::string> installedDrivers();

  const Dialect *dialect_;
  Environment environment_;
  Handle<SQL_HANDLE_DBC> handle_;
  bool connected_ = false, lost_ = false, inTransaction_ = false, onCluster_ = false;
  Failure failure_ = Failure::Other;
  int64_t changedRows_ = 0, number_ = 0;
};

Failure Connection::meaningOf(SQLHANDLE statement) {
  Failure meaning = Failure::Other;
  for (SQLSMALLINT record = 1;; ++record) {
    char16_t state[6] = {};
    SQLINTEGER number = 0;
    SQLSMALLINT length = 0;
    // The text is not asked for: a driver may put into it what nobody is to read.
    if (!SQL_SUCCEEDED(SQLGetDiagRecW(SQL_HANDLE_STMT, statement, record, wide(state), &number, nullptr, 0, &length)))
      return meaning;
    if (state[0] == u'0' && state[1] == u'8') return Failure::Lost;
    for (const NativeError &error : dialect_->errors)
      if (error.number == number && meaning == Failure::Other) meaning = error.meaning;
  }
}

void Connection::failed(StatementHandle &statement) {
  failure_ = meaningOf(statement.get());
  statement = StatementHandle();
  if (failure_ == Failure::Lost) {
    lost_ = true;
    inTransaction_ = false;
  }
  // Servers differ in how much they undo by themselves: here it is always the whole transaction.
  if (failure_ == Failure::Retry && inTransaction_) collided();
}

// A node that gives a transaction up because of another node's says so with the next statement that is executed, but
// not when that happens while it prepares one: it would go on outside of the transaction.
bool Connection::stillInTransaction() {
  StatementHandle statement(handle_.get());
  SQLBIGINT still = 0;
  SQLLEN length = 0;
  std::u16string text = u"SELECT @@in_transaction";
  sent();
  if (!statement || !SQL_SUCCEEDED(SQLExecDirectW(statement.get(), wide(text), SQLINTEGER(text.size()))) ||
      !SQL_SUCCEEDED(SQLFetch(statement.get())) ||
      !SQL_SUCCEEDED(SQLGetData(statement.get(), 1, SQL_C_SBIGINT, &still, sizeof still, &length))) {
    failed(statement);
    return false;
  }
  if (still == 0) collided();
  return still != 0;
}

std::vector<std::string> Connection::installedDrivers() {
  std::vector<std::string> names;
  char16_t name[256], attributes[2];
  SQLSMALLINT length = 0, attributesLength = 0;
  for (SQLUSMALLINT direction = SQL_FETCH_FIRST;
       SQL_SUCCEEDED(SQLDriversW(environment_.get(), direction, wide(name), SQLSMALLINT(std::size(name)), &length,
                                 wide(attributes), SQLSMALLINT(std::size(attributes)), &attributesLength));
       direction = SQL_FETCH_NEXT) {
    std::string utf8;
    appendUtf8(utf8, name, std::char_traits<char16_t>::length(name));
    names.push_back(utf8);
  }
  return names;
}

bool Connection::connect(const ServerSettings &server) {
  environment_ = Environment(nullptr);
  auto number = [](uintptr_t value) { return reinterpret_cast<SQLPOINTER>(value); };
  if (!environment_ ||
      !SQL_SUCCEEDED(SQLSetEnvAttr(environment_.get(), SQL_ATTR_ODBC_VERSION, number(SQL_OV_ODBC3), SQL_IS_UINTEGER)))
    return false;
  handle_ = Handle<SQL_HANDLE_DBC>(environment_.get());
  if (!handle_) return false;
  SQLSetConnectAttrW(handle_.get(), SQL_ATTR_LOGIN_TIMEOUT, number(kLoginSeconds), SQL_IS_UINTEGER);
  std::string options = connectionString(*dialect_, server, installedDrivers());
  std::u16string text;
  text.reserve(2 * options.size() + 1);
  appendUtf16(text, options);
  // For drivers that miscount the units: what they read beyond the end ends there.
  const auto units = SQLSMALLINT(text.size());
  text.resize(2 * text.size() + 1);
  char16_t completed[2];
  SQLSMALLINT length = 0;
  connected_ = SQL_SUCCEEDED(SQLDriverConnectW(handle_.get(), nullptr, wide(text), units, wide(completed),
                                               SQLSMALLINT(std::size(completed)), &length, SQL_DRIVER_NOPROMPT));
  wipe(options);
  wipe(text);
  return connected_;
}

bool Connection::setUp(std::chrono::milliseconds wait, std::string &database) {
  const bool microsoft = dialect_->engine == ZELK_ENG_MSSQL;
  std::string question = dialect_->whoIsThere;
  auto who = prepare(question);
  // Builds of MariaDB without Galera, as those for Windows, do not know the variables of clusters. The tables of
  // variables, which every build has, take ten times as long.
  if (const size_t comment = question.find("/*"); !who && comment != question.npos)
    who = prepare(question.erase(comment, question.find("*/") + 2 - comment));
  if (!who || who->step() != Step::Row || who->isNull(0)) return false;
  database = who->text(0);
  number_ = who->integer(3);
  if (!microsoft && who->text(1).find("MariaDB") != std::string_view::npos) dialect_ = &mariadbDialect();
  onCluster_ = !who->text(2).empty();
  who.reset();
  if (onCluster_) {
    // A node that does not belong to it, or not yet, has the books of yesterday.
    auto ready = prepare(dialect_->isReady);
    if (!ready || ready->step() != Step::Row || ready->integer(0) != 1) return false;
  }
  for (const std::string &sql : dialect_->setUp(wait))
    if (!execute(sql)) return false;
  return true;
}

} // namespace
} // namespace odbc

std::unique_ptr<SqlConnection> openOdbc(const ServerSettings &server, std::chrono::milliseconds wait,
                                        std::string &database) {
  if (!server.isServer() || !odbc::driverManager()) return nullptr;
  const Dialect &dialect = server.engine == ZELK_ENG_MSSQL ? mssqlDialect() : mysqlDialect();
  // Where a comma is part of a host's name, there is one.
  for (const ServerSettings &one : dialect.portBehindHost ? std::vector{server} : eachHost(server)) {
    auto connection = std::make_unique<odbc::Connection>(dialect);
    if (connection->connect(one) && connection->setUp(wait, database)) return connection;
  }
  return nullptr;
}

uint64_t roundTrips() {
  return odbc::tripsOfAll;
}

} // namespace vldb98
