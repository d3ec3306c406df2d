#include "frame/lifecycle.h"

#include <atomic>
#include <mutex>
#include <utility>

#include "frame/context.h"
#include "frame/messages.h"
#include "frame/notification.h"
#include "frame/program.h"
#include "frame/protocol_file.h"
#include "frame/settings.h"
#include "odbc/odbc_connection.h"
#include "platform/files.h"
#include "platform/system.h"
#include "sqlite/sqlite_connection.h"
#include "store/database.h"

namespace frame {
namespace {

struct Lifecycle {
  std::mutex mutex;
  std::atomic<bool> attached{false};
  bool notificationLoaded = false;
};

Lifecycle &lifecycle() {
  static Lifecycle instance;
  return instance;
}

constexpr size_t kServerSettingSize = 260;

std::string findProgramDirectory() {
  struct Place {
    const char *section, *key;
    size_t size;
  };
  static constexpr Place places[] = {
      {"MFIBU", "ProgPfad98", 250}, {"MFIBU", "ProgPfad", 250}, {"ZELK", "ProgPfad", 260}};
  for (const Place &place : places)
    if (std::string path = setting(place.section, place.key, place.size); !path.empty())
      return platform::withSeparator(path);
  return "";
}

vldb98::DatabaseSettings databaseSettings(const std::string &programDirectory) {
  vldb98::DatabaseSettings settings;
  settings.directory = setting("ZELK", "DatenPfad", 260);
  if (settings.directory.empty()) settings.directory = programDirectory + vldb98::kDataFolder;
  settings.lockWait = std::chrono::milliseconds(positiveSetting("ZELK", "Sperrwartezeit", 10000));
  settings.openEmbedded = [](const std::string &path, std::chrono::milliseconds wait) {
    return vldb98::openSqlite(path, {wait, false, true});
  };
  settings.server = vldb98::serverOfSettings(
      [](const char *key) { return setting(vldb98::kServerSection, key, kServerSettingSize); });
  settings.openServer = vldb98::openOdbc;
  return settings;
}

ProgramSettings readProgramSettings() {
  ProgramSettings settings;
  settings.programDirectory = findProgramDirectory();
  settings.reportDirectory = setting("ZELK", "ReportPfad", 260);
  if (settings.reportDirectory.empty()) settings.reportDirectory = setting("MFIBU", "ReportPfad", 260);
  if (!settings.reportDirectory.empty()) settings.reportDirectory = platform::withSeparator(settings.reportDirectory);
  settings.totalRecall = setting("MFIBU", "TotalRecall", 3) == "98";
  settings.noFiscalYearCheck = setting("MFIBU", "NoGejaCheck", 2) == "j";
  settings.basicEdition = setting("MFIBU", "Edition", 10) == "Basis";
  return settings;
}

// \return the initialisation status
ZelkResult attachParts(bool connect) {
  platform::adoptUserLocale();
  setProgramSettings(readProgramSettings());
  const std::string &programDirectory = programSettings().programDirectory;
  if (programDirectory.empty()) return ZELKERR_Ini;
  if (!allocateContextSlot()) return ZELKERR_Thread;
  vldb98::VLDB_Attach(databaseSettings(programDirectory));
  // A database that cannot be opened now does not fail the attach: each call tries it again, and says so.
  if (connect && vldb98::IsZELKMode())
    vldb98::ConnectSQL(vldb98::kConnectSilently, vldb98::ZELK_ENG_DEFAULT, nullptr, nullptr, nullptr, 0, nullptr,
                       nullptr);
  startProtocolBySetting();
  return ZELK_OK;
}

} // namespace

void attach(bool connect) {
  Lifecycle &state = lifecycle();
  if (state.attached.load(std::memory_order_acquire)) return;
  bool notifies = true;
  {
    std::lock_guard guard(state.mutex);
    if (state.attached) return;
    // For whoever asks meanwhile, and should the attach be torn off.
    setInitialisationStatus(ZELKERR_Ini);
    try {
      setInitialisationStatus(attachParts(connect));
    } catch (...) {
      // Out of memory.
    }
    state.notificationLoaded = initialisationStatus() == ZELK_OK;
    // Before any other thread can post something that would go unnoticed.
    if (state.notificationLoaded) notifies = startNotification();
    // A failed attach is not tried again either, until ZELK_Detach.
    state.attached.store(true, std::memory_order_release);
  }
  // Without the mutex: it may show a message box, under which the host can call again.
  if (!notifies) showMessage(resources::kCompanionNotStarted);
}

void detach() {
  Lifecycle &state = lifecycle();
  bool notifies;
  {
    std::lock_guard guard(state.mutex);
    if (!state.attached) return;
    writeProtocolEnd();
    closeProtocol();
    platform::releaseProcessInitialisation();
    notifies = std::exchange(state.notificationLoaded, false);
  }
  // Without the mutex: this too may show a message box.
  if (notifies) endNotification();
  std::lock_guard guard(state.mutex);
  if (!state.attached) return;
  freeThreadContext();
  freeContextSlot();
  vldb98::VLDB_Detach();
  setInitialisationStatus(0);
  state.attached = false;
}

} // namespace frame
