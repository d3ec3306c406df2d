#include "frame/lifecycle.h"

#include <mutex>
#include <utility>

#include "frame/context.h"
#include "frame/messages.h"
#include "frame/notification.h"
#include "frame/protocol.h"
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
  std::atomic<ZelkResult> status{0};
  std::atomic<bool> detached{false};
  bool notificationLoaded = false;
  ProgramSettings settings;
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

void attach(Lifecycle &state, bool connect) {
  platform::adoptUserLocale();
  state.status = ZELKERR_Ini;
  ProgramSettings &settings = state.settings;
  settings = {};
  settings.programDirectory = findProgramDirectory();
  if (settings.programDirectory.empty()) return;
  state.status = ZELKERR_Thread;
  if (!allocateContextSlot()) return;
  state.status = ZELKERR_Ini;
  vldb98::VLDB_Attach(databaseSettings(settings.programDirectory));
  // A database that cannot be opened now does not fail the attach: each call tries it again, and says so.
  if (connect && vldb98::IsZELKMode())
    vldb98::ConnectSQL(vldb98::kConnectSilently, vldb98::ZELK_ENG_DEFAULT, nullptr, nullptr, nullptr, 0, nullptr,
                       nullptr);
  settings.reportDirectory = setting("ZELK", "ReportPfad", 260);
  if (settings.reportDirectory.empty()) settings.reportDirectory = setting("MFIBU", "ReportPfad", 260);
  if (!settings.reportDirectory.empty()) settings.reportDirectory = platform::withSeparator(settings.reportDirectory);
  settings.totalRecall = setting("MFIBU", "TotalRecall", 3) == "98";
  settings.noFiscalYearCheck = setting("MFIBU", "NoGejaCheck", 2) == "j";
  settings.basicEdition = setting("MFIBU", "Edition", 10) == "Basis";
  startProtocolBySetting(settings.programDirectory);
  state.status = ZELK_OK;
}

} // namespace

ZelkResult initialisationStatus() {
  return lifecycle().status;
}
bool detached() {
  return lifecycle().detached;
}
void setDetached() {
  lifecycle().detached = true;
}
const ProgramSettings &programSettings() {
  return lifecycle().settings;
}

} // namespace frame

using frame::lifecycle;

int ZELK_CALL ZELK_Attach(bool connect) {
  auto &state = lifecycle();
  if (state.attached.load(std::memory_order_acquire)) return 1;
  bool notifies = true;
  {
    std::lock_guard guard(state.mutex);
    if (state.attached) return 1;
    try {
      frame::attach(state, connect);
    } catch (...) {
      state.status = ZELKERR_Ini;
    }
    state.notificationLoaded = state.status == ZELK_OK;
    // Before any other thread can post something that would go unnoticed.
    if (state.notificationLoaded) notifies = frame::startNotification();
    // A failed attach is not tried again either, until ZELK_Detach.
    state.attached.store(true, std::memory_order_release);
  }
  // Without the mutex: it may show a message box, under which the host can call again.
  if (!notifies) frame::showMessage(resources::kZelkoutStart);
  return 1;
}

int ZELK_CALL ZELK_Detach() {
  auto &state = lifecycle();
  bool notifies;
  {
    std::lock_guard guard(state.mutex);
    if (!state.attached) return 1;
    frame::writeProtocolEnd();
    frame::closeProtocol();
    platform::releaseProcessInitialisation();
    notifies = std::exchange(state.notificationLoaded, false);
  }
  // Without the mutex: this too may show a message box.
  if (notifies) ZELK_FreeDLLs();
  std::lock_guard guard(state.mutex);
  if (!state.attached) return 1;
  frame::freeThreadContext();
  frame::freeContextSlot();
  vldb98::VLDB_Detach();
  state.status = 0;
  state.attached = false;
  return 1;
}

ZelkResult ZELK_CALL ZELK_Status() {
  static constexpr frame::Export self{.name = "ZELK_Status"};
  ZelkResult status = frame::initialisationStatus(), result = status < 0 ? status : ZELK_OK;
  frame::Protokoll entry(self, {}, result);
  return result;
}
