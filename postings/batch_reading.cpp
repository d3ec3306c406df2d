// Reading the postings of a batch back.
#include <cstring>

#include "frame/call.h"
#include "frame/fetch.h"
#include "frame/messages.h"
#include "vlba98/text.h"
#include "vlfn98/accounts.h"
#include "vlfn98/client.h"
#include "vlfn98/documents.h"

using namespace frame;
using namespace vldb98;

namespace {

void fill(ZELK_TEILBUCHUNG &line, const SPLIT &stored) {
  line.Sollart = vlfn98::KontoArtToZELKKontoArt(stored.Sollart);
  line.Habenart = vlfn98::KontoArtToZELKKontoArt(stored.Habenart);
  line.Kostenschablone = stored.Kostenschablone;
  vlba98::copyTrimmed(line.Sollkonto, stored.Sollkonto);
  vlba98::copyTrimmed(line.Habenkonto, stored.Habenkonto);
  vlba98::strncpy2(line.Bruttobetrag, stored.Brutto);
  vlba98::strncpy2(line.Steuersatz, stored.Steuersatz);
  vlba98::strncpy2(line.Steuerbetrag, stored.Steuerbetrag);
  vlba98::strncpy2(line.Text, stored.Text);
  vlba98::strncpy2(line.Text2, stored.Text2);
}

int fill(ZELK_SPLITBUCHUNG &out, Store &store, const BATCHBUCHUNG &posting) {
  out = {};
  out.Mandantennummer = store.HoleFista().Nummer;
  out.Stapelnummer = posting.Stapel;
  out.Teilbuchungsanzahl = posting.Anzahl;
  out.UStDirekt = posting.USTDirekt;
  out.Zahlungsziel = posting.Zahlungsziel;
  out.Eroeffnungsbuchung = posting.Eroeffnung;
  out.Abschlussbuchung = posting.Abschluss;
  out.Umbuchung = posting.Umbuchung;
  vlba98::reversedToExternal6(out.Belegdatum, posting.Belegdatum);
  vlba98::reversedToExternal6(out.Valutadatum, posting.Valutadatum);
  vlba98::strncpy2(out.Belegnummer, posting.Belegnummer);
  vlba98::strncpy2(out.OPBelegnummer, posting.OPBelegnummer);
  vlba98::strncpy2(out.Waehrung, posting.Waehrung);
  vlba98::strncpy2(out.ESR, posting.ESR);
  for (size_t i = 0; i < std::size(out.Teilbuchung); ++i)
    if (const SPLIT *stored = store.PSplit(i)) fill(out.Teilbuchung[i], *stored);
  return vlfn98::DmsGetDmsID(store, posting.DMSNr, out.DMSID);
}

} // namespace

ZelkResult ZELK_CALL ZELK_InitHoleBatch(int32_t Mandantennummer, int32_t Stapelnummer, int32_t Fehlermeldungen) {
  static constexpr Export self{.name = "ZELK_InitHoleBatch"};
  return run(
      self,
      {number("Mandantennummer:", Mandantennummer), number("Stapelnummer:", Stapelnummer), messages(Fehlermeldungen)},
      [&](ThreadContext *context) -> ZelkResult {
        context->fetch.end();
        Store *store = context->session();
        if (!store) return ZELKERR_Datenbank;
        if (ZelkResult opened = openClient(*context, *store, Mandantennummer); opened <= 0) return opened;
        uint8_t found;
        if (!store->Used(KeyBuilder().number(Stapelnummer), found, kStapel, ZELK_ENG_DEFAULT)) return ZELKERR_Datenbank;
        if (!found) return refuse(*context, ZELKERR_uzl_Stapelnr, resources::kGibtEsNicht, "Stapel");
        BATCHBUCHUNG posting{};
        if (!store->ReadBat(posting, Stapelnummer, 0, found)) return ZELKERR_Datenbank;
        if (!found) return ZELK_keinKonto;
        context->fetch.kind = kBatchbuchung;
        context->fetch.pending = true;
        context->fetch.client = Mandantennummer;
        context->batchPosting = posting;
        return ZELK_OK;
      });
}

ZelkResult ZELK_CALL ZELK_HoleBatch(ZELK_SPLITBUCHUNG *Buchung) {
  static constexpr Export self{.name = "ZELK_HoleBatch", .fetch = true};
  return run(self, {out("Buchung:", Buchung)}, [&](ThreadContext *context) -> ZelkResult {
    if (context->fetch.kind != kBatchbuchung) return ZELKERR_keinInit;
    if (!context->fetch.pending) return ZELKERR_keinDatensatz;
    if (!Buchung) return ZELKERR_nicht_moeglich;
    Store *store = context->session();
    if (!store || vlfn98::HoleMandantenDaten(*store, context->fetch.client) != ZELK_OK) return ZELKERR_Datenbank;
    // Read again, since the lines in memory are the posting's that was built or read last; and one that was deleted
    // meanwhile makes room for the next.
    BATCHBUCHUNG &at = context->batchPosting;
    uint8_t found;
    ZELK_SPLITBUCHUNG delivered;
    if (!store->ReadBat(at, at.Stapel, at.Nr, found)) return ZELKERR_Datenbank;
    if (!found) {
      context->fetch.pending = false;
      return ZELKERR_keinDatensatz;
    }
    DATENBANK next{};
    if (!fill(delivered, *store, at) || !store->GetNextExt(next, found, kBatchbuchung, ZELK_ENG_DEFAULT))
      return ZELKERR_Datenbank;
    *Buchung = delivered;
    context->fetch.pending = found && next.Batchbuchung.Stapel == at.Stapel;
    if (context->fetch.pending) at = next.Batchbuchung;
    return context->fetch.pending ? ZELK_OK : ZELK_letzterDatensatz;
  });
}
