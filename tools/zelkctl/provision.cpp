#include "zelkctl/provision.h"

#include <cstdio>

#include "platform/files.h"
#include "sqlite/sqlite_connection.h"
#include "vlba98/encoding.h"
#include "vldb98/database.h"
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

std::unique_ptr<vldb98::Store> openStore(const std::string &directory, bool create) {
  vldb98::DatabaseSettings settings;
  settings.directory = directory;
  settings.openEmbedded = [create](const std::string &path, std::chrono::milliseconds wait) {
    return vldb98::openSqlite(path, {wait, create, true});
  };
  return vldb98::openSession(settings);
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
  auto store = openStore(directory, false);
  if (!store)
    complain("Die Datenbank in " + directory +
             " kann nicht geöffnet werden. Sie fehlt, ist schreibgeschützt oder keine "
             "Datenbank dieses Programms. Neu anlegen: zelkctl einrichten VERZEICHNIS");
  return store;
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
  bool existed = platform::isFile(platform::withSeparator(data) + vldb98::kDatabaseFile);
  auto store = openStore(data, true);
  if (!store || !vldb98::createTables(*store)) {
    complain("Die Datenbank in " + data +
             " kann nicht angelegt werden. Ist dort eine andere Datei dieses Namens, oder "
             "ist das Verzeichnis schreibgeschützt?");
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
              existed ? "Datenbank besteht bereits:" : "Datenbank angelegt:", data.c_str(), root.c_str());
  return kDone;
}

} // namespace zelkctl
