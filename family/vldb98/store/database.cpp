#include "store/database.h"

#include <algorithm>
#include <atomic>
#include <mutex>
#include <optional>
#include <random>

#include "isam/server_engine.h"
#include "platform/files.h"
#include "platform/ui.h"
#include "store/guards.h"

namespace vldb98 {
namespace {

struct State {
  std::mutex mutex;
  DatabaseSettings settings; ///< in use
  DatabaseSettings defaults; ///< as attached
  std::atomic<DBENGINE> engine{ZELK_ENG_BTRIEVE};
  bool open = false;
  EngineDecorator decorator;
  std::atomic<uint32_t> generation{1};
};

State &state() {
  static State instance;
  return instance;
}

DatabaseSettings settingsNow() {
  std::lock_guard guard(state().mutex);
  return state().settings;
}

// Some clusters refuse named locks. One that nobody else asks for tells.
bool hasNamedLocks(Locks &locks) {
  std::random_device random;
  const LockName own{0, 0, uint64_t(random()) << 32 | random()};
  return locks.acquire({&own, 1}, LockMode::PassThrough);
}

std::unique_ptr<Engine> openServerEngine(const DatabaseSettings &settings) {
  if (!settings.openServer) return nullptr;
  std::string database;
  auto connection = settings.openServer(settings.server, settings.lockWait, database);
  if (!connection) return nullptr;
  auto locks = openServerLocks(*connection, database, settings.lockWait);
  if (connection->onCluster()) {
    if (!hasNamedLocks(*locks)) locks.reset();
    locks = openClusterLocks(*connection, std::move(locks), settings.lockWait);
    if (!locks) return nullptr;
  }
  return std::make_unique<ServerEngine>(std::move(connection), std::move(locks));
}

std::unique_ptr<Engine> openEngine(const DatabaseSettings &settings) {
  if (settings.server.isServer()) return openServerEngine(settings);
  if (!settings.openEmbedded) return nullptr;
  std::string directory = platform::withSeparator(settings.directory);
  auto connection = settings.openEmbedded(directory + kDatabaseFile, settings.lockWait);
  if (!connection) return nullptr;
  auto locks = openFileLocks(directory + kLockFile, settings.lockWait);
  if (!locks) return nullptr;
  return std::make_unique<IsamEngine>(std::move(connection), std::move(locks));
}

// Under the mutex.
void use(const DatabaseSettings &settings) {
  state().settings = settings;
  state().engine = settings.server.isServer() ? settings.server.engine : ZELK_ENG_BTRIEVE;
  state().open = true;
  ++state().generation;
}

bool isMissing(const char *text) {
  return !text || !*text;
}

// Asks for what a connection cannot do without. \return false when the person cancels
bool askForMissing(ServerSettings &server, bool passwordGiven) {
  auto ask = [](const char *what, std::string &value) {
    if (!value.empty()) return true;
    auto answer = platform::ui().input("Verbindung zum Datenbankserver", what);
    if (answer) value = *answer;
    return answer.has_value();
  };
  std::string password = server.password.empty() && !passwordGiven ? "" : "-";
  if (!ask("Host:", server.host) || !ask("Benutzer:", server.user) || !ask("Passwort:", password) ||
      !ask("Datenbank:", server.database))
    return false;
  if (server.password.empty() && !passwordGiven) server.password = Secret(password);
  wipe(password);
  return true;
}

} // namespace

void VLDB_Attach(const DatabaseSettings &settings) {
  std::lock_guard guard(state().mutex);
  state().defaults = settings;
  state().defaults.directory = platform::absolutePath(settings.directory);
  use(state().defaults);
}

void VLDB_Detach() {
  std::lock_guard guard(state().mutex);
  use({});
  state().defaults = {};
  state().open = false;
}

ConnectResult ConnectSQL(unsigned flags, DBENGINE engine, const char *host, const char *user, const char *password,
                         uint16_t port, const char *extra, const char *database) {
  DatabaseSettings settings = settingsNow();
  ServerSettings server;
  {
    std::lock_guard guard(state().mutex);
    server = state().defaults.server;
  }
  if (engine == ZELK_ENG_DEFAULT) engine = server.engine;
  if (engine == ZELK_ENG_BTRIEVE) {
    if (!isMissing(database)) settings.directory = platform::absolutePath(database);
    settings.server = {};
  } else {
    if (engine != server.engine) server = {};
    server.engine = engine;
    const bool passwordGiven = password && (*password || !isMissing(user));
    if (!isMissing(host)) server.host = host;
    if (!isMissing(user)) server.user = user;
    if (passwordGiven) server.password = Secret(password);
    if (port) server.port = port;
    if (!isMissing(extra)) server.extra = extra;
    if (!isMissing(database)) server.database = database;
    if (flags == kConnectWithDialog && !askForMissing(server, passwordGiven)) return ConnectResult::Cancelled;
    settings.server = server;
  }
  if (!openEngine(settings)) return ConnectResult::Failed;
  std::lock_guard guard(state().mutex);
  use(settings);
  return ConnectResult::Done;
}

void SchliessDB() {
  std::lock_guard guard(state().mutex);
  state().open = false;
  ++state().generation;
}

void DeinitializeDB() {
  SchliessDB();
  std::lock_guard guard(state().mutex);
  state().settings.openEmbedded = {};
  state().settings.openServer = {};
  state().settings.server = {};
  state().defaults.server = {};
}

bool IsZELKMode() {
  return GetUsedEngine() == ZELK_ENG_BTRIEVE;
}
DBENGINE GetUsedEngine() {
  return state().engine;
}
std::string HoleDbPfad() {
  return platform::withSeparator(settingsNow().directory);
}
std::string HoleLongDbPfad() {
  return platform::longPath(HoleDbPfad());
}

bool IsDbOffen() {
  std::lock_guard guard(state().mutex);
  return state().open;
}

uint32_t generation() {
  return state().generation;
}

std::unique_ptr<Store> openSession() {
  return IsDbOffen() ? openSession(settingsNow()) : nullptr;
}

std::unique_ptr<Store> openSession(const DatabaseSettings &settings) {
  auto engine = openEngine(settings);
  if (!engine) return nullptr;
  EngineDecorator decorator;
  {
    std::lock_guard guard(state().mutex);
    decorator = state().decorator;
  }
  if (decorator) engine = decorator(std::move(engine));
  if (!settings.server.isServer()) return std::make_unique<Store>(std::move(engine));
  auto reopen = [settings](std::chrono::milliseconds wait) {
    DatabaseSettings same = settings;
    same.lockWait = wait;
    return openSession(same);
  };
  return std::make_unique<Store>(std::move(engine), std::make_unique<Settlement>(reopen, settings.lockWait));
}

void setEngineDecorator(EngineDecorator decorator) {
  std::lock_guard guard(state().mutex);
  state().decorator = std::move(decorator);
}

bool createTables(Store &store) {
  // A server commits each table by itself; what a failure left behind is completed by the next attempt.
  std::optional<Transaction> together;
  if (!store.IsUsedEngineSQL()) together.emplace(store, false);
  const bool done = (!together || together->isOpen()) &&
                    std::all_of(allTables().begin(), allTables().end(),
                                [&](const Table &table) { return store.CreateTable(table.number) != 0; });
  return together ? together->finish(done) : done;
}

} // namespace vldb98
