/// The database of the process: where it is, how sessions to it are opened.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "sql/server.h"
#include "sql/sql.h"
#include "store/store.h"

namespace vldb98 {

/// How the embedded engine's file is opened, and how a server is reached; the drivers stand in a layer above.
using OpenEmbedded =
    std::function<std::unique_ptr<SqlConnection>(const std::string &path, std::chrono::milliseconds wait)>;
using OpenServer = std::function<std::unique_ptr<SqlConnection>(const ServerSettings &server,
                                                                std::chrono::milliseconds wait, std::string &database)>;

/// Puts something around an engine before a session gets it.
using EngineDecorator = std::function<std::unique_ptr<Engine>(std::unique_ptr<Engine>)>;

struct DatabaseSettings {
  std::string directory; ///< of the embedded database, UTF-8
  std::chrono::milliseconds lockWait{10000};
  OpenEmbedded openEmbedded;
  ServerSettings server; ///< none: the embedded database
  OpenServer openServer;
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

/// Chooses the engine for all sessions opened from now on and tries it. All texts are UTF-8. What is null or empty, and
/// a port of 0, is taken from the settings where they are of the same engine; an empty password only together with an
/// empty user.
/// \param flags    kConnectWithDialog: the person is asked for what is missing then (host, user, password, database)
/// \param engine   ZELK_ENG_DEFAULT: the one of the settings
/// \param extra    further options for the ODBC driver, as in a connection string ("FORCETLS=1;SSLVERIFY=1")
/// \param database of a server its name; embedded its directory
ConnectResult ConnectSQL(unsigned flags, DBENGINE engine, const char *host, const char *user, const char *password,
                         uint16_t port, const char *extra, const char *database);

/// Closes the database: sessions end with their threads' next call, and none is opened until ConnectSQL has chosen one.
void SchliessDB();
/// The same for good: until the next attach ConnectSQL fails, too.
void DeinitializeDB();

/// True while the data lies in a directory of the product's own, not on a server.
bool IsZELKMode();

DBENGINE GetUsedEngine();
/// Directory of the embedded database, with a separator at its end.
std::string HoleDbPfad();
/// The same with the long names of its folders, however the settings name them.
std::string HoleLongDbPfad();
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
