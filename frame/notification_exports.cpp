// The exports of the change notification.
#include "frame/lifecycle.h"
#include "frame/messages.h"
#include "frame/notification.h"
#include "frame/program.h"

using namespace frame;

void ZELK_CALL ZELK_InitDLLs() try {
  const bool first = initialisationStatus() == 0;
  attach(true);
  // The attach has started the process, or told that it could not.
  if (first && initialisationStatus() == ZELK_OK) return;
  endNotification();
  if (!startNotification()) showMessage(resources::kCompanionNotStarted);
} catch (...) {
}

void ZELK_CALL ZELK_FreeDLLs() {
  endNotification();
}

void ZELK_CALL ZELK_Out(int32_t Aktion, int32_t Art, int32_t Wert, const void *Satz, int16_t Start) {
  notifyChange(Aktion, Art, Wert, Satz, Start);
}
