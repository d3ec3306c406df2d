// What the engines are told: texts of statements, connection strings, names of locks.
#include <gtest/gtest.h>

#include "isam/statements.h"
#include "locks/lock_statements.h"
#include "locks/locks.h"
#include "odbc/connection_string.h"

namespace test {
namespace {

using namespace vldb98;

const Table &terms() {
  return *findTable(kZahlziel);
}
std::string select(const Dialect &dialect, int table, int key, ReadOp op, bool bounded = false, bool update = false) {
  const std::string text =
      selectStatement(dialect, *findTable(table), *findTable(table)->key(key), op, bounded, update);
  return text.substr(0, text.find(' ', 7)) + " .." + text.substr(text.find(" FROM "));
}

TEST(Dialects, WordTheirStatements) {
  const Dialect &ms = mssqlDialect(), &maria = mariadbDialect();
  const struct {
    std::string made, expected;
  } rows[] = {
      {select(sqliteDialect(), kGeschaeftsjahr, 1, ReadOp::Next),
       "SELECT \"Jahr\",\"Beginn\",\"Ende\",\"Abgeschlossen\" .. FROM \"Geschaeftsjahr\" WHERE \"Mandant\"=? AND "
       "(\"Beginn\",\"Jahr\")>(?,?) ORDER BY \"Beginn\",\"Jahr\" LIMIT 1"},
      {select(ms, kKombination, 0, ReadOp::Exact, false, true),
       "SELECT TOP .. FROM \"Kombination\" WITH (UPDLOCK, ROWLOCK) WHERE \"Mandant\"=? AND \"Kostenart\"=? AND "
       "\"Kostenstelle\"=?"},
      {select(ms, kKombination, 0, ReadOp::Prev),
       "SELECT TOP .. FROM \"Kombination\" WHERE \"Mandant\"=? AND \"Kostenart\"<=?2 AND ((\"Kostenart\"<?2) OR "
       "(\"Kostenart\"=?2 AND \"Kostenstelle\"<?3)) ORDER BY \"Kostenart\" DESC,\"Kostenstelle\" DESC"},
      {select(maria, kKombination, 0, ReadOp::Next, true, true),
       "SELECT \"Kostenart\",\"Kostenstelle\" .. FROM \"Kombination\" FORCE INDEX (PRIMARY) WHERE \"Mandant\"=? AND "
       "\"Kostenart\">=?2 AND ((\"Kostenart\">?2) OR (\"Kostenart\"=?2 AND \"Kostenstelle\">?3)) AND "
       "\"Kostenart\"<=?4 AND ((\"Kostenart\"<?4) OR (\"Kostenart\"=?4 AND \"Kostenstelle\"<=?5)) ORDER BY "
       "\"Kostenart\",\"Kostenstelle\" LIMIT 1 FOR UPDATE"},
      {select(maria, kGeschaeftsjahr, 1, ReadOp::Ge),
       "SELECT \"Jahr\",\"Beginn\",\"Ende\",\"Abgeschlossen\" .. FROM \"Geschaeftsjahr\" FORCE INDEX "
       "(\"Geschaeftsjahr_1\") WHERE \"Mandant\"=? AND \"Beginn\">=?2 ORDER BY \"Beginn\",\"Jahr\" LIMIT 1"},
      {greatestStatement(ms, terms()),
       "SELECT TOP 1 \"Nr\" FROM \"Zahlungsziel\" WITH (UPDLOCK, ROWLOCK) WHERE \"Mandant\"=? ORDER BY \"Nr\" DESC"},
      {createStatements(ms, *findTable(kDmsId)).front(),
       "IF OBJECT_ID(N'DmsId') IS NULL CREATE TABLE \"DmsId\" (\"Mandant\" INT NOT NULL,\"Nr\" INT NOT NULL,\"Id\" "
       "VARCHAR(150) COLLATE Latin1_General_100_BIN2_UTF8 NOT NULL,\"Kostenschablone\" INT NOT NULL,PRIMARY KEY "
       "(\"Mandant\",\"Nr\"),CONSTRAINT \"DmsId_1\" UNIQUE (\"Mandant\",\"Id\"))"},
      {createStatements(mysqlDialect(), *findTable(kGeschaeftsjahr)).front(),
       "CREATE TABLE IF NOT EXISTS \"Geschaeftsjahr\" (\"Mandant\" INT NOT NULL,\"Jahr\" SMALLINT NOT NULL,\"Beginn\" "
       "VARCHAR(10) NOT NULL,\"Ende\" VARCHAR(10) NOT NULL,\"Abgeschlossen\" SMALLINT NOT NULL,PRIMARY KEY "
       "(\"Mandant\",\"Jahr\"),KEY \"Geschaeftsjahr_1\" (\"Mandant\",\"Beginn\",\"Jahr\")) ENGINE=InnoDB DEFAULT "
       "CHARACTER SET utf8mb4 COLLATE utf8mb4_0900_bin"},
      {lockStatement(maria, 2), "SELECT CASE WHEN COALESCE(GET_LOCK(?1,?3/1000),0)<>1 THEN 0 WHEN "
                                "COALESCE(GET_LOCK(?2,?3/1000),0)<>1 THEN 1 ELSE 2 END"},
      {lockStatement(ms, 1), "SET NOCOUNT ON; DECLARE @had int=0, @answer int; IF @had=0 BEGIN EXEC "
                             "@answer=sp_getapplock @Resource=?1,@LockMode='Exclusive',@LockOwner='Session',"
                             "@LockTimeout=?2; IF @answer>=0 SET @had=1; END; SELECT @had"},
      {unlockStatement(maria, 2), "DO RELEASE_LOCK(?1),RELEASE_LOCK(?2)"},
      {unlockStatement(ms, 1), "SET NOCOUNT ON; EXEC sp_releaseapplock @Resource=?1,@LockOwner='Session'"},
      {lookUpsStatement(ms, {{findTable(kKombination), findTable(kKombination)->key(0), ReadOp::Exists},
                             {findTable(kGeschaeftsjahr), findTable(kGeschaeftsjahr)->key(1), ReadOp::Le}}),
       "SELECT \"t0\".\"Kostenart\",\"t1\".\"Jahr\",\"t1\".\"Beginn\",\"t1\".\"Ende\",\"t1\".\"Abgeschlossen\" FROM "
       "(SELECT 1 AS one) AS one LEFT JOIN \"Kombination\" AS \"t0\" ON \"t0\".\"Mandant\"=? AND "
       "\"t0\".\"Kostenart\"=? AND \"t0\".\"Kostenstelle\"=? LEFT JOIN (SELECT TOP 1 "
       "\"Jahr\",\"Beginn\",\"Ende\",\"Abgeschlossen\" FROM \"Geschaeftsjahr\" WHERE \"Mandant\"=? AND "
       "\"Beginn\"<=?5 ORDER BY \"Beginn\" DESC,\"Jahr\" DESC) AS \"t1\" ON 1=1"},
      {insertStatement(*findTable(kKombination), 2),
       "INSERT INTO \"Kombination\" (\"Mandant\",\"Kostenart\",\"Kostenstelle\") VALUES (?,?,?),(?,?,?)"},
      {insertNumberedStatement(maria, *findTable(kDmsId)),
       "INSERT INTO \"DmsId\" (\"Mandant\",\"Nr\",\"Id\",\"Kostenschablone\") SELECT ?,COALESCE(MAX(\"Nr\"),0)+1,?,? "
       "FROM \"DmsId\" FORCE INDEX (PRIMARY) WHERE \"Mandant\"=? RETURNING \"Nr\""},
  };
  for (const auto &row : rows)
    EXPECT_EQ(row.made, row.expected);
}

// The servers' limits: 3072 bytes of MySQL, 900 and 1700 of MSSQL; no column name twice.
TEST(Dialects, IndexesFitTheServers) {
  for (const Table &table : allTables())
    for (const Key &key : table.keys) {
      size_t bytes = 8;
      for (int field : key.totalOrder)
        bytes += 4u * table.fields[size_t(field)].size;
      EXPECT_LE(bytes, key.index == 0 ? 900u : 1700u) << table.name << ", key " << key.index;
    }
}

TEST(ConnectionStrings, HoldWhatTheyAreGiven) {
  EXPECT_EQ(odbc::braced("a}b{c;d=e\"' "), "{a}}b{c;d=e\"' }");
  ServerSettings server;
  server.engine = ZELK_ENG_MYSQL;
  server.host = "db.example";
  server.user = "a;b";
  server.password = Secret("x}y");
  server.port = 3307;
  server.database = "b\xC3\xBC"
                    "cher";
  const std::vector<std::string> installed = {"SQLite3", "MariaDB ANSI", "MySQL ODBC Unicode", "MariaDB Unicode",
                                              "ODBC Driver 18 for SQL Server"};
  auto made = [&](const Dialect &dialect) { return odbc::connectionString(dialect, server, installed); };
  EXPECT_EQ(made(mariadbDialect()), "DRIVER={MariaDB Unicode};SERVER={db.example};PORT=3307;UID={a;b};PWD={x}}y};"
                                    "DATABASE={b\xC3\xBC"
                                    "cher};CONN_TIMEOUT=5;CHARSET=utf8mb4;OPTION=2;");
  EXPECT_EQ(made(mssqlDialect()),
            "DRIVER={ODBC Driver 18 for SQL Server};SERVER={db.example,3307};UID={a;b};PWD={x}}y};"
            "DATABASE={b\xC3\xBC"
            "cher};");
  // What the options name themselves is left to them; what only looks like an option inside a value is none.
  server.port = 0;
  server.extra = "Driver={My};FORCETLS=1; uid = other;NAME={a}};PWD=b}";
  EXPECT_EQ(made(mysqlDialect()), "SERVER={db.example};PWD={x}}y};DATABASE={b\xC3\xBC"
                                  "cher};CONN_TIMEOUT=5;"
                                  "CHARSET=utf8mb4;OPTION=2;" +
                                      server.extra);
}

TEST(Hosts, AreTriedInTurn) {
  const struct {
    const char *text, *hosts;
  } rows[] = {{"", "@3306"},
              {"a", "a@3306"},
              {" a, b:3307 ,,c:1", "a@3306 b@3307 c@1"},
              {"::1,[::1],[fe80::1]:3308", "::1@3306 ::1@3306 fe80::1@3308"},
              {"a:,b:0,c:65536,d:x,e:33 07,[f", "a:@3306 b:0@3306 c:65536@3306 d:x@3306 e:33 07@3306 [f@3306"}};
  for (const auto &row : rows) {
    ServerSettings server;
    server.host = row.text;
    server.port = 3306;
    server.user = "u";
    std::string hosts;
    for (const ServerSettings &one : eachHost(server))
      hosts += (hosts.empty() ? "" : " ") + one.host + "@" + std::to_string(one.port);
    EXPECT_EQ(hosts, row.hosts) << row.text;
    EXPECT_EQ(eachHost(server).front().user, "u");
  }
}

TEST(LockNames, FitTheServer) {
  const LockName greatest{65535, 126, UINT64_MAX};
  for (const std::string &database : {std::string("b"), std::string(40, 'd'), std::string(64, 'd')})
    EXPECT_LE(serverLockName(database, greatest).size(), 64u) << database;
  EXPECT_EQ(serverLockName("Buecher", {1, 4, 0}), "zelk98/buecher/1/4/0000000000000000");
  EXPECT_NE(serverLockName(std::string(64, 'd'), greatest), serverLockName(std::string(63, 'd'), greatest));
}

TEST(Secrets, DoNotLieInMemoryInPlain) {
  const std::string password = "geheim-und-lang";
  const Secret secret(password), copy = secret;
  EXPECT_EQ(copy.reveal(), password);
  const std::string bytes(reinterpret_cast<const char *>(&secret), sizeof secret);
  EXPECT_EQ(bytes.find(password), std::string::npos);
  EXPECT_TRUE(Secret().reveal().empty() && Secret().empty());
}

} // namespace
} // namespace test
