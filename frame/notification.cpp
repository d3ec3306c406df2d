// Start and end of the notification of dependent applications.
#include <atomic>

#include "frame/messages.h"
#include "frame/settings.h"
#include "platform/registry.h"

namespace {

const char kRegistrationKey[] = "SOFTWARE\\Velta\\ZELK_Out";

} // namespace

void ZELK_CALL ZELK_InitDLLs() try {
  // Whoever registered is told that this build hands no changes over, as when the process for it is missing.
  if (platform::registrySubkeyCount(platform::Hive::LocalMachine, kRegistrationKey) > 0)
    frame::showMessage(resources::kZelkoutStart);
} catch (...) {
}

void ZELK_CALL ZELK_FreeDLLs() {}
