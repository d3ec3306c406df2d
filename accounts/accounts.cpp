// Looking accounts up.
#include "vlfn98/accounts.h"
#include "frame/account_output.h"
#include "frame/call.h"
#include "frame/client.h"
#include "frame/fetch.h"
#include "frame/messages.h"
#include "store/typed.h"
#include "vlba98/date.h"
#include "vlba98/text.h"
#include "vlfn98/account_fields.h"
#include "vlfn98/client.h"

using namespace frame;
using namespace vldb98;

ZelkResult ZELK_CALL ZELK_ExistiertKonto(int32_t Mandantennummer, const char *Kontonummer, int32_t Kontoart,
                                         int32_t Dimension, const char *Kostref) {
  static constexpr Export self{.name = "ZELK_ExistiertKonto"};
  return run(self,
             {number("Mandantennummer:", Mandantennummer), text("Kontonummer:", Kontonummer),
              number("Kontoart:", Kontoart), number("Dimension:", Dimension), text("Kostref:", Kostref)},
             [&](ThreadContext *context) -> ZelkResult {
               if (!vlfn98::isAccountKind(Kontoart)) return ZELKERR_uzl_Kontoart;
               Store &store = context->store();
               if (int32_t opened = vlfn98::HoleMandantenDaten(store, Mandantennummer); opened < 1) return opened;
               const char *account = Kontonummer ? Kontonummer : "";
               const bool known =
                   vlfn98::existsAccount(store, vlfn98::KzFromZELKArt(Kontoart), account, Dimension, Kostref);
               return known ? ZELK_OK : ZELK_keinKonto;
             });
}

ZelkResult ZELK_CALL ZELK_ExistiertKuerzel(int32_t Mandantennummer, const char *Kuerzel, int32_t Kontoart) {
  static constexpr Export self{.name = "ZELK_ExistiertKuerzel"};
  return run(self,
             {number("Mandantennummer:", Mandantennummer), text("Kürzel:", Kuerzel), number("Kontoart:", Kontoart)},
             [&](ThreadContext *context) -> ZelkResult {
               if (!vlfn98::isAccountKind(Kontoart)) return ZELKERR_uzl_Kontoart;
               Store &store = context->store();
               if (int32_t opened = vlfn98::HoleMandantenDaten(store, Mandantennummer); opened < 1) return opened;
               uint8_t found;
               must(store.UsedKuerzel(Kuerzel ? Kuerzel : "", found, vlfn98::KzFromZELKArt(Kontoart)));
               return found ? ZELK_OK : ZELK_keinKonto;
             });
}

namespace {

void fill(ZELK_SAKO &out, const SACHKONTO &account) {
  out = {};
  vlba98::copyTrimmed(out.Kontonummer, account.Nr);
  vlba98::strncpy2(out.Kuerzel, account.Kuerzel);
  vlba98::strncpy2(out.Name, account.Name);
  out.GuV = account.GuV;
  out.Steuerschluessel = account.Steuerschluessel;
  out.Kostenart = account.Kostenart;
  out.Kostenschablone = account.Kostenschablone;
  vlba98::strncpy2(out.Waehrung, account.Waehrung);
  out.Gesperrt = account.Gesperrt;
}

void fill(ZELK_PEKO &out, const PERSONENKONTO &account) {
  out = {};
  fillPersonal(out, account);
}

void fill(ZELK_KOST &out, const KOST &centre) {
  out = {};
  vlba98::copyTrimmed(out.Kontonummer, centre.Nr);
  out.Dimension = centre.Dimension;
  vlba98::copyTrimmed(out.Kostref, centre.Kostref);
  vlba98::strncpy2(out.Kuerzel, centre.Kuerzel);
  vlba98::strncpy2(out.Name, centre.Name);
  vlba98::reversedToExternal6(out.LaufzeitVon, centre.LaufzeitVon);
  vlba98::reversedToExternal6(out.LaufzeitBis, centre.LaufzeitBis);
}

template <class Out, class Record>
ZelkResult deliver(ThreadContext &context, int32_t kind, Out *account, const Record DATENBANK::*record) {
  if (context.fetch.kind == kind && !account) return ZELKERR_nicht_moeglich;
  return deliverNext(context, kind, [&](const DATENBANK &pending) { fill(*account, pending.*record); });
}

} // namespace

ZelkResult ZELK_CALL ZELK_InitHoleKonto(int32_t Mandantennummer, int32_t Kontoart, int32_t Sortierung, const char *Ab,
                                        int32_t Fehlermeldungen) {
  static constexpr Export self{.name = "ZELK_InitHoleKonto"};
  return run(self,
             {number("Mandantennummer:", Mandantennummer), number("Kontoart:", Kontoart),
              number("Sortierung:", Sortierung), text("Ab:", Ab), messages(Fehlermeldungen)},
             [&](ThreadContext *context) -> ZelkResult {
               context->fetch.end();
               if (!vlfn98::isAccountKind(Kontoart))
                 return refuse(*context, ZELKERR_uzl_Kontoart, resources::kAccountKindInadmissible);
               if (Sortierung < 0 || Sortierung >= vlfn98::kOrders)
                 return refuse(*context, ZELKERR_uzl_Sortierung, resources::kOrderInadmissible);
               Store &store = context->store();
               if (ZelkResult opened = openClient(*context, store, Mandantennummer); opened <= 0) return opened;
               int table = vlfn98::KzFromZELKArt(Kontoart);
               FileNumber file = fileNumber(table, vlfn98::keyIndex(table, Sortierung));
               if (!Ab || !*Ab) return startFetch(*context, store, file, nullptr, ZELK_keinKonto);
               const SCHLUESSEL key = keyOf(file, Ab);
               return startFetch(*context, store, file, &key, ZELK_keinKonto);
             });
}

ZelkResult ZELK_CALL ZELK_HoleSako(ZELK_SAKO *Konto) {
  static constexpr Export self{.name = "ZELK_HoleSako", .fetch = true};
  return run(self, {out("Konto:", Konto)},
             [&](ThreadContext *context) { return deliver(*context, kSachkonto, Konto, &DATENBANK::Sachkonto); });
}

ZelkResult ZELK_CALL ZELK_HolePeko(ZELK_PEKO *Konto) {
  static constexpr Export self{.name = "ZELK_HolePeko", .fetch = true};
  return run(self, {out("Konto:", Konto)}, [&](ThreadContext *context) {
    int32_t kind = context->fetch.kind == kDebitor ? kDebitor : kKreditor;
    return deliver(*context, kind, Konto, &DATENBANK::Personenkonto);
  });
}

ZelkResult ZELK_CALL ZELK_HoleKost(ZELK_KOST *Konto) {
  static constexpr Export self{.name = "ZELK_HoleKost", .fetch = true};
  return run(self, {out("Konto:", Konto)},
             [&](ThreadContext *context) { return deliver(*context, kKost, Konto, &DATENBANK::Kost); });
}
