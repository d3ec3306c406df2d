#include "support/engines.h"

#include <ostream>

#include "odbc/odbc_connection.h"
#include "sqlite/sqlite_connection.h"
#include "support/server.h"

namespace test {
namespace {

using namespace vldb98;

DatabaseSettings embeddedIn(const std::filesystem::path &folder) {
  DatabaseSettings settings;
  settings.directory = folder.string();
  // Power cuts are not tested, and waiting for the disk would be most of the time.
  settings.openEmbedded = [](const std::string &path, std::chrono::milliseconds wait) {
    return openSqlite(path, {wait, true, false});
  };
  return settings;
}

std::unique_ptr<SqlConnection> connectEmbedded(const DatabaseSettings &settings) {
  return settings.openEmbedded(settings.directory + "/" + kDatabaseFile, settings.lockWait);
}

DatabaseSettings onServerOfTests(const std::filesystem::path &) {
  DatabaseSettings settings;
  settings.server = serverDatabase();
  settings.openServer = openOdbc;
  return settings;
}

std::unique_ptr<SqlConnection> connectServer(const DatabaseSettings &settings) {
  std::string database;
  return openOdbc(settings.server, settings.lockWait, database);
}

} // namespace

const std::vector<EngineCase> &engines() {
  static const std::vector<EngineCase> list = {
      {"SQLite", ZELK_ENG_BTRIEVE, ZELK_ENG_MYSQL,
       [] { return std::string(onServer() ? "the tests run on a server" : ""); }, embeddedIn, connectEmbedded},
      {"MariaDB", ZELK_ENG_MYSQL, ZELK_ENG_BTRIEVE,
       [] { return std::string(onServer() ? "" : "there is no server (tests/mariadb/with_server)"); }, onServerOfTests,
       connectServer},
  };
  return list;
}

void PrintTo(const EngineCase &engine, std::ostream *stream) {
  *stream << engine.name;
}

void StoreTest::SetUp() {
  if (std::string reason = GetParam().missing(); !reason.empty()) GTEST_SKIP() << GetParam().name << ": " << reason;
  settings_ = GetParam().provide(folder());
  store = openSession(settings_);
  ASSERT_TRUE(store && createTables(*store));
  for (uint16_t client : {1, 2}) {
    FIRMENSTAMM master{};
    master.Nummer = client;
    put(master.AktJahr, "46");
    master.Version = kDataVersion;
    ASSERT_TRUE(store->SaveFista(master));
    uint8_t found;
    ASSERT_TRUE(store->SetzeFista(client, found) && found);
    for (int16_t year : {2025, 2026}) {
      DATENBANK record{};
      record.Geschaeftsjahr.Jahr = year;
      put(record.Geschaeftsjahr.Beginn, std::to_string(year - 1980) + "0101");
      put(record.Geschaeftsjahr.Ende, std::to_string(year - 1980) + "1231");
      ASSERT_TRUE(store->Insert(record, kGeschaeftsjahr));
    }
    DATENBANK batch{};
    ASSERT_TRUE(store->Insert(batch, kStapel));
  }
  uint8_t found;
  ASSERT_TRUE(store->SetzeFista(1, found) && found);
}

namespace {

std::unique_ptr<Store> openFirstClient(DatabaseSettings settings, std::chrono::milliseconds lockWait) {
  settings.lockWait = lockWait;
  auto session = openSession(settings);
  uint8_t found = 0;
  return session && session->SetzeFista(1, found) && found ? std::move(session) : nullptr;
}

} // namespace

std::unique_ptr<Store> StoreTest::open(std::chrono::milliseconds lockWait) {
  return openFirstClient(settings_, lockWait);
}

std::unique_ptr<Store> openBeside(const std::string &engine, const std::filesystem::path &folder,
                                  std::chrono::milliseconds lockWait) {
  for (const EngineCase &known : engines())
    if (known.name == engine) return openFirstClient(known.provide(folder), lockWait);
  return nullptr;
}

} // namespace test
