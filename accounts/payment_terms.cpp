// Looking payment terms up.
#include "frame/call.h"
#include "frame/client.h"
#include "frame/messages.h"
#include "frame/snapshot.h"
#include "store/typed.h"
#include "vlba98/text.h"
#include "vlfn98/client.h"
#include "vlfn98/terms.h"

using namespace frame;
using namespace vldb98;

namespace {

void fill(ZELK_ZAHLUNGSZIEL &out, const ZAHLZIEL &term) {
  out = {};
  out.Zahlzielnummer = term.Nr;
  vlba98::strncpy2(out.Name, term.Kuerzel);
  out.Skontotage1 = term.Skontotage1;
  vlba98::strncpy2(out.Skontosatz1, term.Skontosatz1);
  out.Skontotage2 = term.Skontotage2;
  vlba98::strncpy2(out.Skontosatz2, term.Skontosatz2);
  out.Zahltage = term.Zahltage;
  out.TagInMonat = term.TagInMonat;
  out.MonatePlus = term.MonatePlus;
  vlba98::strncpy2(out.Bemerkung, term.Bemerkung);
  out.Zahlungsart = term.Zahlungsart;
}

// \param number 0: the first. \return 1, -27, -1 when there is none at all
ZelkResult readTerm(Store &store, int32_t number, ZELK_ZAHLUNGSZIEL &out) {
  if (const auto term = number == 0 ? first<ZAHLZIEL>(store) : find<ZAHLZIEL>(store, number)) {
    fill(out, *term);
    const auto following = next<ZAHLZIEL>(store);
    out.Naechstes = following ? following->Nr : 0;
    return ZELK_OK;
  }
  return number != 0 && first<ZAHLZIEL>(store) ? ZELKERR_uzl_Zahlungsziel : ZELKERR_keine_Zahlungsziele;
}

} // namespace

ZelkResult ZELK_CALL ZELK_HoleZahlungsziel(int32_t Mandantennummer, int32_t Zahlzielnummer,
                                           ZELK_ZAHLUNGSZIEL *Zahlungsziel, int32_t Fehlermeldungen) {
  static constexpr Export self{.name = "ZELK_HoleZahlungsziel", .companion = resources::kKeineZahlungsziele};
  return run(self,
             {number("Mandantennummer:", Mandantennummer), number("Zahlzielnummer:", Zahlzielnummer),
              out("Zahlungsziel:", Zahlungsziel), messages(Fehlermeldungen)},
             [&](ThreadContext *context) -> ZelkResult {
               if (!Zahlungsziel) return ZELKERR_nicht_moeglich;
               Store &store = context->store();
               if (ZelkResult opened = openClient(*context, store, Mandantennummer); opened <= 0) return opened;
               ZELK_ZAHLUNGSZIEL term;
               ZelkResult result = inSnapshot(store, [&] { return readTerm(store, Zahlzielnummer, term); });
               if (result == ZELKERR_uzl_Zahlungsziel) return refuse(*context, result, resources::kPaymentTermMissing);
               if (result == ZELK_OK) *Zahlungsziel = term;
               return result;
             });
}

ZelkResult ZELK_CALL ZELK_HoleZZnr(int32_t Mandantennummer, const char *Name) {
  static constexpr Export self{.name = "ZELK_HoleZZnr"};
  return run(self, {number("Mandantennummer:", Mandantennummer), text("Name:", Name)},
             [&](ThreadContext *context) -> ZelkResult {
               Store &store = context->store();
               if (int32_t opened = vlfn98::HoleMandantenDaten(store, Mandantennummer); opened < 1) return opened;
               const auto term = find<ZAHLZIEL>({store, fileNumber(kZahlziel, 1)}, vlfn98::storedShortName(Name));
               return term ? ZelkResult(term->Nr) : ZELK_keinKonto;
             });
}
