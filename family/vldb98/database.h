/// The database of the process: where it is, how sessions to it are opened.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "vldb98/sql.h"
#include "vldb98/store.h"

namespace vldb98 {

/// How the embedded engine's file is opened; the driver stands in a layer above.
using OpenEmbedded =
    std::function<std::unique_ptr<SqlConnection>(const std::string &path, std::chrono::milliseconds wait)>;

/// Puts something around an engine before a session gets it.
using EngineDecorator = std::function<std::unique_ptr<Engine>(std::unique_ptr<Engine>)>;

struct DatabaseSettings {
  std::string directory; ///< of the embedded database, UTF-8
  std::chrono::milliseconds lockWait{10000};
  OpenEmbedded openEmbedded;
};

/// File names of the embedded database inside its directory.
inline constexpr char kDataFolder[] = "DATEN"; ///< below the program directory
inline constexpr char kDatabaseFile[] = "MERKA.DB";
inline constexpr char kLockFile[] = "MERKA.LCK";

/// Binds the library to the store: from now on sessions can be opened.
void VLDB_Attach(const DatabaseSettings &settings);
void VLDB_Detach();

enum class ConnectResult { Done = 0, Cancelled = 1, Failed = 2 };

constexpr unsigned kConnectWithDialog = 0x308;
constexpr unsigned kConnectSilently = 0x310;

/// Chooses the engine for all sessions opened from now on and tries it.
/// \param engine   ZELK_ENG_DEFAULT or ZELK_ENG_BTRIEVE: the embedded database. There is no driver for servers in this
///                 build: other engines fail
/// \param database embedded: directory of the database, null or empty for the one of the settings; UTF-8
ConnectResult ConnectSQL(unsigned flags, DBENGINE engine, const char *host, const char *user, const char *password,
                         uint16_t port, const char *extra, const char *database);

/// Closes the database for the process: no session is opened any more until the next attach.
void DeinitializeDB();

/// True while the data lies in a directory of the product's own, not on a server.
bool IsZELKMode();

DBENGINE GetUsedEngine();
/// Directory of the embedded database, with a separator at its end.
std::string HoleDbPfad();
/// Whether a session can be opened.
bool IsDbOffen();

/// Counts the changes of which database is meant, and its ends: a session opened under another count is out of date.
uint32_t generation();

/// A new session for the calling thread; null when the database cannot be opened.
std::unique_ptr<Store> openSession();

/// The same in a database that need not be the process's.
std::unique_ptr<Store> openSession(const DatabaseSettings &settings);

/// For tests: applied to every engine that is opened from now on; empty ends it.
void setEngineDecorator(EngineDecorator decorator);

/// Creates the tables that are missing. \return false when the store failed
bool createTables(Store &store);

} // namespace vldb98
