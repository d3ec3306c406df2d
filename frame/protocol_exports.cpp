// The exports that control the call protocol.
#include <cstring>

#include "frame/call.h"
#include "frame/protocol.h"
#include "frame/settings.h"
#include "platform/ui.h"
#include "vlba98/encoding.h"
#include "vlba98/text.h"

using namespace frame;

namespace {

enum Action { kChooseByDialog = 1, kTake = 2, kTell = 4 };

ZelkResult takeFile(const std::string &name) {
  return chooseProtocolFile(name) ? ZELK_OK : ZELKERR_keine_Protokolldatei;
}

ZelkResult tellFile(char *buffer) {
  std::string name = toCodePage(protocolFileName());
  if (name.empty() || !buffer) return ZELKERR_keine_Protokolldatei;
  vlba98::strncpy2(buffer, name, kProtocolNameSize);
  return ZELK_OK;
}

} // namespace

ZelkResult ZELK_CALL ZELK_Protokoll(int32_t Fenster, int32_t Aktion, char *Dateiname) {
  static constexpr Export self{.name = "ZELK_Protokoll", .dialog = true, .needsContext = false};
  // Only one action reads the name; after the buffer of another there may be anything.
  return run(self,
             {number("Fenster:", Fenster), number("Aktion:", Aktion),
              Aktion == kTake ? text("Dateiname:", Dateiname) : out("Dateiname:", Dateiname)},
             [&](ThreadContext *) -> ZelkResult {
               switch (Aktion) {
               case kChooseByDialog: {
                 auto chosen = platform::ui().saveFile(uintptr_t(uint32_t(Fenster)), "Textdateien  (*.txt)", "*.txt");
                 return chosen ? takeFile(*chosen) : ZELK_keinKonto;
               }
               case kTake:
                 // One that does not end is too long.
                 return takeFile(Dateiname ? vlba98::toUtf8({Dateiname, ::strnlen(Dateiname, kProtocolNameSize)}) : "");
               case kTell:
                 return tellFile(Dateiname);
               }
               return ZELKERR_uzl_Aktion;
             });
}

ZelkResult ZELK_CALL ZELK_ProtokollStart() {
  static constexpr Export self{.name = "ZELK_ProtokollStart", .needsContext = false};
  return run(self, {}, [](ThreadContext *) { return startProtocol(); });
}

ZelkResult ZELK_CALL ZELK_ProtokollEnde() {
  static constexpr Export self{.name = "ZELK_ProtokollEnde"};
  const ZelkResult result = ZELK_OK;
  writeProtocolEnd();
  { Protokoll entry(self, {}, result); }
  closeProtocol();
  return result;
}
