#include "sql/dialect.h"

#include <algorithm>

namespace vldb98 {
namespace {

constexpr NativeError kMysqlErrors[] = {
    {1062, Failure::Duplicate},
    {1264, Failure::OutOfRange},
    // Deadlock, a lock that was not had in time, a row that changed since the snapshot. The last comes from clusters at
    // the commit.
    {1213, Failure::Retry},
    {1205, Failure::Retry},
    {1020, Failure::Retry},
    {1180, Failure::Retry},
    // Shutdown, broken connections, killed ones, idle for too long.
    {1047, Failure::Lost}, // of a node that its cluster has lost
    {1053, Failure::Lost},
    {1152, Failure::Lost},
    {1158, Failure::Lost},
    {1159, Failure::Lost},
    {1160, Failure::Lost},
    {1161, Failure::Lost},
    {1927, Failure::Lost},
    {2006, Failure::Lost},
    {2013, Failure::Lost},
    {2055, Failure::Lost},
    {4031, Failure::Lost},
};
constexpr NativeError kMssqlErrors[] = {
    {2601, Failure::Duplicate},
    {2627, Failure::Duplicate},
    // Deadlock, a lock that was not had in time, snapshot conflicts.
    {1205, Failure::Retry},
    {1222, Failure::Retry},
    {3960, Failure::Retry},
    {3961, Failure::Retry},
};

constexpr const char *kMysqlDrivers[] = {"MariaDB", "MySQL"};
constexpr const char *kMssqlDrivers[] = {"ODBC Driver", "SQL Server", "FreeTDS"};

std::vector<std::string> noSetUp(std::chrono::milliseconds) {
  return {};
}

// The server's own modes are left out: what a text means must not depend on how a server is set up.
std::vector<std::string> setUpMysql(std::chrono::milliseconds wait) {
  auto seconds = std::max<int64_t>((wait.count() + 999) / 1000, 1);
  return {"SET SESSION sql_mode='ANSI_QUOTES,STRICT_ALL_TABLES,NO_ENGINE_SUBSTITUTION,ERROR_FOR_DIVISION_BY_ZERO', "
          "SESSION innodb_lock_wait_timeout=" +
              std::to_string(seconds) + ", SESSION autocommit=1",
          "SET SESSION TRANSACTION ISOLATION LEVEL READ COMMITTED"};
}

std::vector<std::string> setUpMssql(std::chrono::milliseconds wait) {
  return {"SET NOCOUNT OFF; SET XACT_ABORT OFF; SET ANSI_NULLS ON; SET QUOTED_IDENTIFIER ON; SET LOCK_TIMEOUT " +
          std::to_string(wait.count()) + "; SET TRANSACTION ISOLATION LEVEL READ COMMITTED"};
}

constexpr NamedLockTexts kMysqlLocks{
    .takeBegin = "SELECT CASE",
    .takeEach = " WHEN COALESCE(GET_LOCK(?{n},{wait}/1000),0)<>1 THEN {before}",
    .takeEnd = " ELSE {count} END",
    .pass = "SELECT CASE WHEN COALESCE(GET_LOCK(?1,?2/1000),0)<>1 THEN 0 ELSE RELEASE_LOCK(?1) END",
    .holder = "SELECT IS_USED_LOCK(?)",
    .giveBegin = "DO ",
    .giveEach = "RELEASE_LOCK(?{n})",
    .giveBetween = ",",
    .endConnection = "KILL %d",
};
constexpr NamedLockTexts kMssqlLocks{
    .takeBegin = "SET NOCOUNT ON; DECLARE @had int=0, @answer int; ",
    .takeEach = "IF @had={before} BEGIN EXEC @answer=sp_getapplock @Resource=?{n},@LockMode='Exclusive',"
                "@LockOwner='Session',@LockTimeout={wait}; IF @answer>=0 SET @had={n}; END; ",
    .takeEnd = "SELECT @had",
    .pass = "SET NOCOUNT ON; DECLARE @answer int; EXEC @answer=sp_getapplock @Resource=?1,@LockMode='Exclusive',"
            "@LockOwner='Session',@LockTimeout=?2; IF @answer>=0 EXEC sp_releaseapplock @Resource=?1,"
            "@LockOwner='Session'; SELECT CASE WHEN @answer>=0 THEN 1 ELSE 0 END",
    .holder = "SELECT 0 WHERE ?=''",
    .giveBegin = "SET NOCOUNT ON; ",
    .giveEach = "EXEC sp_releaseapplock @Resource=?{n},@LockOwner='Session'",
    .giveBetween = "; ",
    .endConnection = "KILL %d",
};

Dialect mysqlFamily(const char *name, const char *createBehind) {
  return {
      .name = name,
      .engine = ZELK_ENG_MYSQL,
      .rowsInFront = "",
      .rowsBehind = " LIMIT %d",
      .comparesRows = false,
      .useIndex = " FORCE INDEX (%s)",
      .primaryIndex = "PRIMARY",
      .forUpdateAtTable = "",
      .forUpdateBehind = " FOR UPDATE",
      .insertsDeliver = false,
      .createInFront = "CREATE TABLE IF NOT EXISTS ",
      .createBehind = createBehind,
      .indexesInside = true,
      .index = "KEY %s",
      .uniqueIndex = "UNIQUE KEY %s",
      .integers = {"SMALLINT", "SMALLINT", "INT", "INT"},
      .money = "BIGINT",
      .year = "SMALLINT",
      .text = "VARCHAR(%d)",
      .textBytesPerCharacter = 1,
      .tableExists = "SELECT 1 FROM information_schema.tables WHERE table_schema=DATABASE() AND table_name=? LIMIT 1",
      .tablesEndTransactions = true,
      .namedLocks = kMysqlLocks,
      // In what only MariaDB reads stands what only MariaDB knows.
      .whoIsThere = "SELECT DATABASE(), VERSION(), "
                    "CONCAT('' /*M!100500 , IF(@@wsrep_on AND @@wsrep_provider<>'none','cluster','') */), "
                    "CONNECTION_ID()",
      .isReady = "SELECT VARIABLE_VALUE='ON' FROM information_schema.GLOBAL_STATUS WHERE VARIABLE_NAME='WSREP_READY'",
      .setUp = setUpMysql,
      .begin = {"START TRANSACTION"},
      // The level holds for the next transaction only; below it there are no consistent snapshots.
      .beginSnapshot = {"SET TRANSACTION ISOLATION LEVEL REPEATABLE READ",
                        "START TRANSACTION WITH CONSISTENT SNAPSHOT"},
      .commit = "COMMIT",
      .rollback = "ROLLBACK",
      .savepoint = "SAVEPOINT z%d",
      .rollbackTo = "ROLLBACK TO SAVEPOINT z%d",
      .release = "RELEASE SAVEPOINT z%d",
      .errors = kMysqlErrors,
      .drivers = kMysqlDrivers,
      // The connection's character set is also what 8-bit texts are in. (The driver for MariaDB miscounts UTF-16:
      // it takes U+00D8 to U+00DB for halves of pairs.) 2: an update counts the rows that it found, also those that
      // it left as they were.
      .fixedOptions = "CHARSET=utf8mb4;OPTION=2;",
      .loginTimeout = "CONN_TIMEOUT",
      .takesUtf8 = true,
      .portBehindHost = false};
}

} // namespace

const Dialect &sqliteDialect() {
  static const Dialect dialect{.name = "SQLite",
                               .engine = ZELK_ENG_BTRIEVE,
                               .rowsInFront = "",
                               .rowsBehind = " LIMIT %d",
                               .comparesRows = true,
                               .useIndex = nullptr,
                               .primaryIndex = nullptr,
                               .forUpdateAtTable = "",
                               .forUpdateBehind = "",
                               .insertsDeliver = false,
                               .createInFront = "CREATE TABLE IF NOT EXISTS ",
                               .createBehind = " STRICT, WITHOUT ROWID",
                               .indexesInside = false,
                               .index = "",
                               .uniqueIndex = "",
                               .integers = {"INTEGER", "INTEGER", "INTEGER", "INTEGER"},
                               .money = "INTEGER",
                               .year = "INTEGER",
                               .text = "TEXT",
                               .textBytesPerCharacter = 1,
                               .tableExists = "SELECT 1 FROM sqlite_schema WHERE type='table' AND name=?",
                               .tablesEndTransactions = false,
                               .namedLocks = {},
                               .whoIsThere = "",
                               .isReady = "",
                               .setUp = noSetUp,
                               .begin = {},
                               .beginSnapshot = {},
                               .commit = "",
                               .rollback = "",
                               .savepoint = "SAVEPOINT z%d",
                               .rollbackTo = "ROLLBACK TO SAVEPOINT z%d",
                               .release = "RELEASE SAVEPOINT z%d",
                               .errors = {},
                               .drivers = {},
                               .fixedOptions = "",
                               .loginTimeout = "",
                               .takesUtf8 = true,
                               .portBehindHost = false};
  return dialect;
}

// Texts are compared by code point and with their trailing blanks; the two servers name that differently.
const Dialect &mariadbDialect() {
  static const Dialect dialect = [] {
    Dialect mariadb = mysqlFamily("MariaDB", " ENGINE=InnoDB DEFAULT CHARACTER SET utf8mb4 COLLATE utf8mb4_nopad_bin");
    mariadb.insertsDeliver = true;
    return mariadb;
  }();
  return dialect;
}
const Dialect &mysqlDialect() {
  static const Dialect dialect =
      mysqlFamily("MySQL", " ENGINE=InnoDB DEFAULT CHARACTER SET utf8mb4 COLLATE utf8mb4_0900_bin");
  return dialect;
}

const Dialect &mssqlDialect() {
  static const Dialect dialect{
      .name = "MSSQL",
      .engine = ZELK_ENG_MSSQL,
      .rowsInFront = "TOP %d ",
      .rowsBehind = "",
      .comparesRows = false,
      .useIndex = nullptr,
      .primaryIndex = nullptr,
      .forUpdateAtTable = " WITH (UPDLOCK, ROWLOCK)",
      .forUpdateBehind = "",
      .insertsDeliver = false,
      .createInFront = "IF OBJECT_ID(N'%s') IS NULL CREATE TABLE ",
      .createBehind = "",
      .indexesInside = true,
      .index = "INDEX %s",
      .uniqueIndex = "CONSTRAINT %s UNIQUE",
      .integers = {"SMALLINT", "SMALLINT", "INT", "INT"},
      .money = "BIGINT",
      .year = "SMALLINT",
      .text = "VARCHAR(%d) COLLATE Latin1_General_100_BIN2_UTF8",
      .textBytesPerCharacter = 3,
      .tableExists = "SELECT 1 FROM INFORMATION_SCHEMA.TABLES WHERE TABLE_SCHEMA=SCHEMA_NAME() AND TABLE_NAME=?",
      .tablesEndTransactions = false,
      .namedLocks = kMssqlLocks,
      .whoIsThere = "SELECT DB_NAME(), '', '', 0",
      .isReady = "",
      .setUp = setUpMssql,
      .begin = {"BEGIN TRANSACTION"},
      .beginSnapshot = {"SET TRANSACTION ISOLATION LEVEL SNAPSHOT; BEGIN TRANSACTION"},
      // The level of a snapshot would hold on.
      .commit = "COMMIT TRANSACTION; SET TRANSACTION ISOLATION LEVEL READ COMMITTED",
      .rollback = "IF @@TRANCOUNT > 0 ROLLBACK TRANSACTION; SET TRANSACTION ISOLATION LEVEL READ COMMITTED",
      .savepoint = "SAVE TRANSACTION z%d",
      .rollbackTo = "ROLLBACK TRANSACTION z%d",
      .release = "",
      .errors = kMssqlErrors,
      .drivers = kMssqlDrivers,
      .fixedOptions = "",
      .loginTimeout = "",
      .takesUtf8 = false,
      .portBehindHost = true};
  return dialect;
}

} // namespace vldb98
