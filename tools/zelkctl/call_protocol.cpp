// Switches the call protocol for the programs that start from now on, and shows it.
//
// Below the exports: a call of the library would itself start the protocol where the setting asks for it, and empty it.
#include <algorithm>
#include <cstdio>

#include "platform/files.h"
#include "platform/registry.h"
#include "vlba98/encoding.h"
#include "zelk98/zelk98.h"
#include "zelkctl/console.h"
#include "zelkctl/provision.h"
#include "zelkctl/verbs.h"

namespace zelkctl {
namespace {

// As the library names them.
const char kKey[] = "Software\\Velta\\ZELK", kValue[] = "Protokolldatei", kDefaultName[] = "ZELKPROT.TXT";
constexpr size_t kLongestName = 259;

bool writeSwitch(const char *value) {
  if (MFWritePrivateProfileString("ZELK", "Protokoll", value, "")) return true;
  complain("Die Einstellungen können nicht geschrieben werden (Abschnitt ZELK).");
  return false;
}

bool switchedOn() {
  std::string value = readSetting("ZELK", "Protokoll");
  return !value.empty() && (value[0] == 'j' || value[0] == 'J');
}

// The file that the next program writes to; empty, and complained of, when there is none.
std::string currentFile() {
  auto chosen = platform::readRegistry(platform::Hive::CurrentUser, kKey, kValue);
  if (!switchedOn() && chosen && !chosen->empty()) return *chosen;
  std::string root = programDirectory();
  if (root.empty()) complain("Es ist kein Programmverzeichnis eingerichtet. Zuerst: zelkctl einrichten VERZEICHNIS");
  return root.empty() ? "" : root + kDefaultName;
}

} // namespace

int switchProtocol(bool on) {
  std::string root = programDirectory();
  if (on && currentFile().empty()) return kFailed;
  if (!writeSwitch(on ? "j" : "n")) return kFailed;
  if (on)
    std::printf("Programme, die ab jetzt starten, protokollieren jeden Aufruf in: %s\n"
                "Das erste Programm leert die Datei, solange kein anderes sie offen hat.\n",
                (root + kDefaultName).c_str());
  else
    std::puts(
        "Programme, die ab jetzt starten, protokollieren nicht mehr. Was schon läuft, schreibt bis zu seinem Ende.");
  return kDone;
}

int chooseProtocolFile(const std::string &file) {
  std::string path = platform::absolutePath(file);
  auto name = vlba98::toWindows1252(path);
  if (!name || name->size() > kLongestName) {
    complain("Der Name ist zu lang oder enthält Zeichen, die es in Windows-1252 nicht gibt: " + path);
    return kFailed;
  }
  if (!platform::writeRegistry(platform::Hive::CurrentUser, kKey, kValue, path)) {
    complain("Die Einstellungen können nicht geschrieben werden.");
    return kFailed;
  }
  std::printf("Programme, die das Protokoll selbst starten (ZELK_ProtokollStart), schreiben es in: %s\n", path.c_str());
  if (switchedOn())
    std::puts("Solange das Protokoll mit \"zelkctl protokoll an\" eingeschaltet ist, gilt die Datei im "
              "Programmverzeichnis.");
  return kDone;
}

int showProtocol(const std::string &chosen) {
  std::string file = chosen.empty() ? currentFile() : chosen;
  if (file.empty()) return kFailed;
  auto content = platform::readFile(file);
  if (!content) {
    complain("Es gibt noch kein Protokoll. Die Datei wäre: " + file + "\nEinschalten: zelkctl protokoll an");
    return kRefused;
  }
  complain("Protokolldatei: " + file);
  content->erase(std::remove(content->begin(), content->end(), '\r'), content->end());
  std::fputs(shown(content->c_str()).c_str(), stdout);
  return kDone;
}

} // namespace zelkctl
