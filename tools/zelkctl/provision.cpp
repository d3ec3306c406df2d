#include "zelkctl/provision.h"

#include <cstdio>
#include <optional>

#include "odbc/odbc_connection.h"
#include "platform/files.h"
#include "sqlite/sqlite_connection.h"
#include "store/database.h"
#include "vlba98/encoding.h"
#include "zelk98/zelk98.h"
#include "zelkctl/console.h"
#include "zelkctl/verbs.h"

namespace zelkctl {
namespace {

// Attach reads no more of the program path.
constexpr size_t kLongestPath = 249;

std::string dataDirectory() {
  if (std::string path = readSetting("ZELK", "DatenPfad"); !path.empty()) return path;
  std::string root = programDirectory();
  return root.empty() ? "" : root + vldb98::kDataFolder;
}

vldb98::ServerSettings server() {
  return vldb98::serverOfSettings([](const char *key) { return readSetting(vldb98::kServerSection, key); });
}

std::unique_ptr<vldb98::Store> openStore(const std::string &directory, const vldb98::ServerSettings &server,
                                         bool create) {
  vldb98::DatabaseSettings settings;
  settings.directory = directory;
  settings.openEmbedded = [create](const std::string &path, std::chrono::milliseconds wait) {
    return vldb98::openSqlite(path, {wait, create, true});
  };
  settings.server = server;
  settings.openServer = vldb98::openOdbc;
  return vldb98::openSession(settings);
}

// Where the settings lead to, for messages.
std::string describe(const vldb98::ServerSettings &reached, const std::string &directory) {
  return reached.isServer() ? reached.database + " auf dem Server " + reached.host : directory;
}

// \return nothing when the database cannot be made; else whether it was there already
std::optional<bool> makeDatabase(const vldb98::ServerSettings &reached, const std::string &directory) {
  uint8_t existed = platform::isFile(platform::withSeparator(directory) + vldb98::kDatabaseFile);
  auto store = openStore(directory, reached, true);
  if (!store || (reached.isServer() && !store->TableExists(vldb98::kFirmenstamm, existed)) ||
      !vldb98::createTables(*store))
    return std::nullopt;
  return existed != 0;
}

} // namespace

std::string readSetting(const char *section, const char *key) {
  char value[260];
  MFGetPrivateProfileString(section, key, "", value, sizeof value, "");
  return shown(value);
}

std::string programDirectory() {
  for (auto [section, key] : {std::pair{"MFIBU", "ProgPfad98"}, {"MFIBU", "ProgPfad"}, {"ZELK", "ProgPfad"}})
    if (std::string path = readSetting(section, key); !path.empty()) return platform::withSeparator(path);
  return "";
}

std::unique_ptr<vldb98::Store> openBooks() {
  std::string directory = dataDirectory();
  if (directory.empty()) {
    complain("Es ist kein Programmverzeichnis eingerichtet. Zuerst: zelkctl einrichten VERZEICHNIS");
    return nullptr;
  }
  auto store = openStore(directory, server(), false);
  if (!store && server().isServer())
    complain("Die Datenbank " + describe(server(), directory) +
             " kann nicht erreicht werden. Läuft der Server, und stimmen die Einstellungen im Abschnitt SQL?");
  else if (!store)
    complain("Die Datenbank in " + directory +
             " kann nicht geöffnet werden. Sie fehlt, ist schreibgeschützt oder keine "
             "Datenbank dieses Programms. Neu anlegen: zelkctl einrichten VERZEICHNIS");
  return store;
}

std::unique_ptr<vldb98::Store> openEnd(bool onServer, bool create) {
  const vldb98::ServerSettings reached = onServer ? server() : vldb98::ServerSettings{};
  const std::string directory = dataDirectory();
  if (onServer && !reached.isServer()) {
    complain("Es ist kein Datenbankserver eingestellt (Abschnitt SQL der Einstellungen).");
    return nullptr;
  }
  if (directory.empty()) {
    complain("Es ist kein Programmverzeichnis eingerichtet. Zuerst: zelkctl einrichten VERZEICHNIS");
    return nullptr;
  }
  auto store = openStore(directory, reached, create);
  if (store && (!create || vldb98::createTables(*store))) return store;
  complain("Die Datenbank " + (onServer ? "" : std::string("in ")) + describe(reached, directory) +
           " kann nicht geöffnet werden.");
  return nullptr;
}

int provision(const std::string &directory) {
  std::string root = platform::withSeparator(platform::absolutePath(directory));
  std::string data = root + vldb98::kDataFolder;
  auto codePage = vlba98::toWindows1252(root);
  if (!codePage) {
    complain("Der Name des Verzeichnisses hat ein Zeichen, das es in Windows-1252 nicht gibt.");
    return kFailed;
  }
  if (!platform::makeDirectories(data)) {
    complain("Das Verzeichnis " + data + " kann nicht angelegt werden.");
    return kFailed;
  }
  if (codePage->size() > kLongestPath) {
    complain("Der Pfad " + root + " ist zu lang.");
    return kFailed;
  }
  const vldb98::ServerSettings reached = server();
  const std::optional<bool> existed = makeDatabase(reached, data);
  if (!existed) {
    complain("Die Datenbank " + (reached.isServer() ? "" : std::string("in ")) + describe(reached, data) +
             " kann nicht angelegt werden. " +
             (reached.isServer()
                  ? "Läuft der Server, gibt es die Datenbank dort, und darf der Benutzer Tabellen anlegen?"
                  : "Ist dort eine andere Datei dieses Namens, oder ist das Verzeichnis schreibgeschützt?"));
    return kFailed;
  }
  // A data folder elsewhere would take precedence over the one that was just made.
  bool elsewhere = !readSetting("ZELK", "DatenPfad").empty();
  if (!MFWritePrivateProfileString("MFIBU", "ProgPfad98", codePage->c_str(), "") ||
      (elsewhere && !MFWritePrivateProfileString("ZELK", "DatenPfad", "", ""))) {
    complain("Die Einstellungen können nicht geschrieben werden (Abschnitte MFIBU und ZELK).");
    return kFailed;
  }
  std::printf("%s %s\nProgrammverzeichnis: %s\n",
              *existed ? "Datenbank besteht bereits:" : "Datenbank angelegt:", describe(reached, data).c_str(),
              root.c_str());
  return kDone;
}

} // namespace zelkctl
