#include "vldb98/database.h"

#include <atomic>
#include <mutex>

#include "platform/files.h"
#include "vldb98/isam_engine.h"

namespace vldb98 {
namespace {

struct State {
  std::mutex mutex;
  DatabaseSettings settings;
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

std::unique_ptr<Engine> openEngine(const DatabaseSettings &settings) {
  if (!settings.openEmbedded) return nullptr;
  std::string directory = platform::withSeparator(settings.directory);
  auto connection = settings.openEmbedded(directory + kDatabaseFile, settings.lockWait);
  if (!connection) return nullptr;
  auto locks = openFileLocks(directory + kLockFile, settings.lockWait);
  if (!locks) return nullptr;
  return std::make_unique<IsamEngine>(ZELK_ENG_BTRIEVE, std::move(connection), std::move(locks));
}

} // namespace

void VLDB_Attach(const DatabaseSettings &settings) {
  std::lock_guard guard(state().mutex);
  state().settings = settings;
  state().settings.directory = platform::absolutePath(settings.directory);
  state().open = true;
  ++state().generation;
}

void VLDB_Detach() {
  std::lock_guard guard(state().mutex);
  state().settings = {};
  state().open = false;
  ++state().generation;
}

ConnectResult ConnectSQL(unsigned, DBENGINE engine, const char *, const char *, const char *, uint16_t, const char *,
                         const char *database) {
  if (engine != ZELK_ENG_DEFAULT && engine != ZELK_ENG_BTRIEVE) return ConnectResult::Failed;
  DatabaseSettings settings = settingsNow();
  if (database && *database) settings.directory = platform::absolutePath(database);
  if (!openEngine(settings)) return ConnectResult::Failed;
  std::lock_guard guard(state().mutex);
  state().settings.directory = settings.directory;
  state().open = true;
  ++state().generation;
  return ConnectResult::Done;
}

void DeinitializeDB() {
  std::lock_guard guard(state().mutex);
  state().open = false;
  ++state().generation;
}

bool IsZELKMode() {
  return GetUsedEngine() == ZELK_ENG_BTRIEVE;
}
DBENGINE GetUsedEngine() {
  return ZELK_ENG_BTRIEVE;
}
std::string HoleDbPfad() {
  return platform::withSeparator(settingsNow().directory);
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
  return std::make_unique<Store>(decorator ? decorator(std::move(engine)) : std::move(engine));
}

void setEngineDecorator(EngineDecorator decorator) {
  std::lock_guard guard(state().mutex);
  state().decorator = std::move(decorator);
}

bool createTables(Store &store) {
  if (!store.Transaktion(1, 0, ZELK_ENG_DEFAULT)) return false;
  for (const Table &table : allTables())
    if (!store.CreateTable(table.number)) {
      store.Transaktion(4, 0, ZELK_ENG_DEFAULT);
      return false;
    }
  return store.Transaktion(2, 0, ZELK_ENG_DEFAULT);
}

} // namespace vldb98
