// The list of a client's batches.
#include <cstring>

#include "frame/call.h"
#include "frame/fetch.h"

using namespace frame;
using namespace vldb98;

ZelkResult ZELK_CALL ZELK_InitHoleStapel(int32_t Mandantennummer, int32_t Fehlermeldungen) {
  static constexpr Export self{.name = "ZELK_InitHoleStapel"};
  return run(self, {number("Mandantennummer:", Mandantennummer), messages(Fehlermeldungen)},
             [&](ThreadContext *context) -> ZelkResult {
               context->fetch.end();
               Store *store = context->session();
               if (!store) return ZELKERR_Datenbank;
               if (ZelkResult opened = openClient(*context, *store, Mandantennummer); opened <= 0) return opened;
               return startFetch(*context, *store, kStapel, nullptr, ZELKERR_keine_Mandanten);
             });
}

ZelkResult ZELK_CALL ZELK_HoleStapel(int32_t *Stapelnummer, char *Stapelname, int32_t *Wiederkehr,
                                     int32_t *Transitorisch, int32_t *Sperre, int32_t *Bebucht, int32_t *Abstimm0) {
  static constexpr Export self{.name = "ZELK_HoleStapel", .fetch = true};
  return run(self,
             {out("Stapelnummer:", Stapelnummer), out("Stapelname:", Stapelname), out("Wiederkehr:", Wiederkehr),
              out("Transitorisch:", Transitorisch), out("Sperre:", Sperre), out("Bebucht:", Bebucht),
              out("Abstimm0:", Abstimm0)},
             [&](ThreadContext *context) {
               return deliverNext(*context, kStapel, [&](const DATENBANK &record) {
                 const STAPEL &batch = record.Stapel;
                 auto put = [](int32_t *target, int32_t value) {
                   if (target) *target = value;
                 };
                 put(Stapelnummer, batch.Nr);
                 if (Stapelname) std::memcpy(Stapelname, batch.Name, sizeof batch.Name);
                 put(Wiederkehr, batch.Wiederkehr);
                 put(Transitorisch, batch.Transitorisch);
                 put(Sperre, batch.Sperre);
                 put(Bebucht, batch.Bebucht);
                 put(Abstimm0, batch.Abstimm0);
               });
             });
}
