// Exports of the frame itself: attach and detach, texts of results, connection, end of a fetch.
#include <algorithm>
#include <cstring>

#include "frame/call.h"
#include "frame/lifecycle.h"
#include "frame/program.h"
#include "frame/protocol.h"
#include "store/database.h"
#include "vlba98/encoding.h"
#include "vlba98/text.h"

using namespace frame;

int ZELK_CALL ZELK_Attach(bool connect) {
  attach(connect);
  return 1;
}

int ZELK_CALL ZELK_Detach() {
  detach();
  return 1;
}

ZelkResult ZELK_CALL ZELK_Status() {
  static constexpr Export self{.name = "ZELK_Status"};
  const ZelkResult status = initialisationStatus(), result = status < 0 ? status : ZELK_OK;
  Protokoll entry(self, {}, result);
  return result;
}

ZelkResult ZELK_CALL ZELK_HoleFehlertext(int32_t code, char *Kurztext, char *Langtext) {
  static constexpr Export self{
      .name = "ZELK_HoleFehlertext", .refusesWhenDetached = false, .needsStatus = false, .needsContext = false};
  return run(self, {number("Fehlernummer:", code), out("Kurztext:", Kurztext), out("Langtext:", Langtext)},
             [&](ThreadContext *) -> ZelkResult {
               if (code < resources::kLeastResult || code > resources::kGreatestResult)
                 return ZELKERR_keine_Fehlernummer;
               auto deliver = [](int id, char *buffer, size_t size) {
                 if (buffer) vlba98::strncpy2(buffer, *vlba98::toWindows1252(resources::text(id)), size);
               };
               deliver(resources::nameId(code), Kurztext, 50);
               deliver(resources::textId(code), Langtext, 250);
               return ZELK_OK;
             });
}

ZelkResult ZELK_CALL ZELK_GetUsedEngine() {
  static constexpr Export self{.name = "ZELK_GetUsedEngine", .needsContext = false, .engine = true};
  return run(self, {}, [](ThreadContext *) -> ZelkResult {
    vldb98::DBENGINE engine = vldb98::GetUsedEngine();
    return engine == vldb98::ZELK_ENG_MYSQL || engine == vldb98::ZELK_ENG_MSSQL ? engine : vldb98::ZELK_ENG_BTRIEVE;
  });
}

ZelkResult ZELK_CALL ZELK_SQLInit(int32_t engine, int32_t dialog, const char *Host, const char *User,
                                  const char *Passwort, int32_t port, const char *Zusatz, const char *Datenbank) {
  static constexpr Export self{.name = "ZELK_SQLInit", .connect = false, .needsContext = false};
  return run(self,
             {frame::engine("Enginetyp:", engine), number("Dialog:", dialog), options("Host:", Host),
              options("User:", User), secret("Passwort:", Passwort), number("Port:", port), options("Zusatz:", Zusatz),
              options("Datenbank:", Datenbank)},
             [&](ThreadContext *) -> ZelkResult {
               auto chosen = engine >= 1 && engine <= 3 ? vldb98::DBENGINE(engine) : vldb98::ZELK_ENG_DEFAULT;
               // The limit is one too high, so that 65536 becomes 0; hosts may count on it.
               int32_t bounded = port < 0 ? 0 : port > 65536 ? 65535 : port;
               unsigned flags = dialog ? vldb98::kConnectWithDialog : vldb98::kConnectSilently;
               auto utf8 = [](const char *value) { return vlba98::toUtf8(value ? value : ""); };
               std::string password = utf8(Passwort);
               auto connected = vldb98::ConnectSQL(flags, chosen, utf8(Host).c_str(), utf8(User).c_str(),
                                                   Passwort ? password.c_str() : nullptr, uint16_t(bounded),
                                                   utf8(Zusatz).c_str(), utf8(Datenbank).c_str());
               vldb98::wipe(password);
               switch (connected) {
               case vldb98::ConnectResult::Done:
                 return ZELK_OK;
               case vldb98::ConnectResult::Cancelled:
                 return ZELK_keinKonto;
               case vldb98::ConnectResult::Failed:
                 break;
               }
               return ZELKERR_Verbindungsfehler;
             });
}

ZelkResult ZELK_CALL ZELK_SQLDeInit() {
  static constexpr Export self{.name = "ZELK_SQLDeInit", .needsContext = false, .remark = "(Dummy in der MERKA FIBU)"};
  return run(self, {}, [](ThreadContext *) -> ZelkResult {
    vldb98::DeinitializeDB();
    // The sessions of other threads close when those threads end.
    if (ThreadContext *own = threadContext()) own->closeSession();
    setDetached();
    return ZELK_OK;
  });
}

ZelkResult ZELK_CALL ZELK_BeendeHolen() {
  static constexpr Export self{.name = "ZELK_BeendeHolen"};
  return run(self, {}, [](ThreadContext *context) -> ZelkResult {
    context->fetch.end();
    return ZELK_OK;
  });
}
