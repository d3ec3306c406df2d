// The list of a client's batches, and letting the user pick one of them.
#include <cstdlib>
#include <cstring>
#include <string>

#include "frame/call.h"
#include "frame/client.h"
#include "frame/fetch.h"
#include "frame/program.h"
#include "frame/selection.h"
#include "frame/snapshot.h"
#include "store/typed.h"

using namespace frame;
using namespace vldb98;

ZelkResult ZELK_CALL ZELK_InitHoleStapel(int32_t Mandantennummer, int32_t Fehlermeldungen) {
  static constexpr Export self{.name = "ZELK_InitHoleStapel"};
  return run(self, {number("Mandantennummer:", Mandantennummer), messages(Fehlermeldungen)},
             [&](ThreadContext *context) -> ZelkResult {
               context->fetch.end();
               Store &store = context->store();
               if (ZelkResult opened = openClient(*context, store, Mandantennummer); opened <= 0) return opened;
               return startFetch(*context, store, kStapel, nullptr, ZELKERR_keine_Mandanten);
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

namespace {

// What fails is told by the result: between here and the export lies the dialog, through which nothing can be thrown.
ZelkResult fillBatches(Store &store, SelectionOrder order, const AddEntry &add) try {
  const FileNumber file = fileNumber(kStapel, order == SelectionOrder::Name ? 1 : 0);
  bool any = false;
  forEach<STAPEL>({store, file}, [&](const STAPEL &batch) {
    add(std::to_string(batch.Nr), batch.Name);
    any = true;
  });
  return any ? ZELK_OK : ZELKERR_keine_Stapel;
} catch (const StoreFailed &) {
  return ZELKERR_Datenbank;
}

} // namespace

ZelkResult ZELK_CALL ZELK_HoleStapelNr(void *HandleParent, int32_t Mandantennummer, int32_t Fehlermeldungen) {
  static constexpr Export self{.name = "ZELK_HoleStapelNr",
                               .dialog = true,
                               .companion = resources::kKeineStapel,
                               .needsStatus = false,
                               .needsContext = false};
  return run(
      self,
      {out("Handle-Parent:", HandleParent), number("Mandantennummer:", Mandantennummer), messages(Fehlermeldungen)},
      [&](ThreadContext *) -> ZelkResult {
        ThreadContext *context = threadContext();
        // Nothing can be listed before the library is initialised; what that came to says more than the want of a
        // context.
        if (!context) return initialisationStatus() < 0 ? initialisationStatus() : ZELKERR_Thread;
        context->messages = Fehlermeldungen;
        std::string chosen;
        ZelkResult result = choose(
            *context, resources::kBatchSelection,
            [&](SelectionOrder order, const AddEntry &add) -> ZelkResult {
              // Anew at every filling: while the dialog is open, the host's windows may call the library.
              Store &store = context->store();
              if (ZelkResult opened = openClient(*context, store, Mandantennummer); opened <= 0) return opened;
              return inSnapshot(store, [&] { return fillBatches(store, order, add); });
            },
            HandleParent, chosen);
        if (result == ZELKERR_Datenbank) context->closeSession();
        return result == ZELK_OK ? std::atoi(chosen.c_str()) : result;
      });
}
