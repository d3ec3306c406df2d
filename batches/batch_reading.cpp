// Reading the postings of a batch back.
#include <cstring>

#include "frame/call.h"
#include "frame/client.h"
#include "frame/fetch.h"
#include "frame/messages.h"
#include "frame/stored_posting.h"
#include "store/typed.h"
#include "vlba98/text.h"
#include "vlfn98/client.h"
#include "vlfn98/documents.h"

using namespace frame;
using namespace vldb98;

namespace {

/// What the fetch keeps beside its place.
struct Reading {
  BATCHBUCHUNG posting{}; ///< the next one to deliver
  bool delivered = false; ///< the lists are those of the posting that was delivered last
  std::vector<SPLIT> lines = {};
  std::vector<KOBU> costs = {};
  size_t nextLine = 0, nextCost = 0;
};

// Null while the thread's fetch is not of batch postings.
Reading *readingOf(ThreadContext &context) {
  return std::any_cast<Reading>(&context.fetch.own);
}

void fill(ZELK_BATCHZEILE &out, const SPLIT &stored) {
  out = {};
  fillLine(out.Teilbuchung, stored);
  out.Steuerschluessel = stored.Steuerschluessel;
  out.Steuerseite = stored.Steuerseite;
  vlba98::strncpy2(out.Brutto, stored.Brutto);
  vlba98::strncpy2(out.Netto, stored.Netto);
  vlba98::strncpy2(out.Steuer, stored.Steuerbetrag);
  vlba98::reversedToExternal6(out.Faelligkeit, stored.Faelligkeit);
  out.Bewegungsart = stored.Bewegungsart;
  out.DmsId = stored.DMSNr;
}

void fill(ZELK_BATCHKOBU &out, const KOBU &stored) {
  out = {};
  out.Teilbuchung = stored.Split;
  vlba98::copyTrimmed(out.Kostenstelle1, stored.Kostenstelle1);
  vlba98::copyTrimmed(out.Kostenstelle2, stored.Kostenstelle2);
  vlba98::copyTrimmed(out.Kostenstelle3, stored.Kostenstelle3);
  vlba98::copyTrimmed(out.Kostenstelle4, stored.Kostenstelle4);
  vlba98::copyTrimmed(out.Kostenstelle5, stored.Kostenstelle5);
  vlba98::copyTrimmed(out.Kostenstelle6, stored.Kostenstelle6);
  out.Kostenkennung = stored.Kostenkennung;
  vlba98::strncpy2(out.Betrag, stored.Betrag);
  vlba98::strncpy2(out.BetragFW, stored.BetragFW);
  vlba98::strncpy2(out.Prozent, stored.Prozent);
  vlba98::strncpy2(out.Menge, stored.Menge);
  vlba98::strncpy2(out.Einheit, stored.Einheit);
  vlba98::strncpy2(out.Bemerkung, stored.Bemerkung);
  vlba98::strncpy2(out.Bemerkung2, stored.Bemerkung2);
}

// Delivers the next one of a list in the posting that was delivered last.
template <class Out, class Record>
ZelkResult deliver(ThreadContext &context, Out *out, std::vector<Record> Reading::*records, size_t Reading::*position) {
  Reading *reading = readingOf(context);
  if (!reading || !reading->delivered) return ZELKERR_keinInit;
  if (!out) return ZELKERR_nicht_moeglich;
  const std::vector<Record> &list = reading->*records;
  size_t &next = reading->*position;
  if (next == list.size()) return list.empty() ? ZELK_keinKonto : ZELKERR_keinDatensatz;
  fill(*out, list[next++]);
  return next == list.size() ? ZELK_letzterDatensatz : ZELK_OK;
}

void fill(ZELK_SPLITBUCHUNG &out, Store &store, const BATCHBUCHUNG &posting) {
  out = {};
  out.Mandantennummer = store.HoleFista().Nummer;
  out.Teilbuchungsanzahl = posting.Anzahl;
  fillHead(out, posting);
  for (size_t i = 0; i < std::size(out.Teilbuchung); ++i)
    if (const SPLIT *stored = store.PSplit(i)) fillLine(out.Teilbuchung[i], *stored);
  vlfn98::DmsGetDmsID(store, posting.DMSNr, out.DMSID);
}

} // namespace

ZelkResult ZELK_CALL ZELK_InitHoleBatch(int32_t Mandantennummer, int32_t Stapelnummer, int32_t Fehlermeldungen) {
  static constexpr Export self{.name = "ZELK_InitHoleBatch"};
  return run(
      self,
      {number("Mandantennummer:", Mandantennummer), number("Stapelnummer:", Stapelnummer), messages(Fehlermeldungen)},
      [&](ThreadContext *context) -> ZelkResult {
        context->fetch.end();
        Store &store = context->store();
        if (ZelkResult opened = openClient(*context, store, Mandantennummer); opened <= 0) return opened;
        if (!exists<STAPEL>(store, Stapelnummer))
          return refuse(*context, ZELKERR_uzl_Stapelnr, resources::kDoesNotExist, "Stapel");
        BATCHBUCHUNG posting{};
        uint8_t found;
        must(store.ReadBat(posting, Stapelnummer, 0, found));
        if (!found) return ZELK_keinKonto;
        context->fetch.kind = kBatchbuchung;
        context->fetch.pending = true;
        context->fetch.client = Mandantennummer;
        context->fetch.own = Reading{posting};
        return ZELK_OK;
      });
}

ZelkResult ZELK_CALL ZELK_HoleBatch(ZELK_SPLITBUCHUNG *Buchung) {
  static constexpr Export self{.name = "ZELK_HoleBatch", .fetch = true};
  return run(self, {out("Buchung:", Buchung)}, [&](ThreadContext *context) -> ZelkResult {
    Reading *reading = readingOf(*context);
    if (!reading) return ZELKERR_keinInit;
    if (!context->fetch.pending) return ZELKERR_keinDatensatz;
    if (!Buchung) return ZELKERR_nicht_moeglich;
    Store &store = context->store();
    must(vlfn98::HoleMandantenDaten(store, context->fetch.client) == ZELK_OK);
    // Read again, since the lines in memory are the posting's that was built or read last; and one that was deleted
    // meanwhile makes room for the next.
    BATCHBUCHUNG &at = reading->posting;
    uint8_t found;
    must(store.ReadBat(at, at.Stapel, at.Nr, found));
    if (!found) {
      context->fetch.pending = false;
      return ZELKERR_keinDatensatz;
    }
    Reading whole;
    whole.delivered = true;
    for (size_t i = 0; i < store.lineCount(); ++i)
      whole.lines.push_back(*store.PSplit(i));
    for (size_t i = 0; i < store.costCount(); ++i)
      whole.costs.push_back(*store.costAt(i));
    ZELK_SPLITBUCHUNG delivered;
    fill(delivered, store, at);
    const auto following = next<BATCHBUCHUNG>(store);
    *Buchung = delivered;
    context->fetch.pending = following && following->Stapel == at.Stapel;
    whole.posting = context->fetch.pending ? *following : at;
    *reading = std::move(whole);
    return context->fetch.pending ? ZELK_OK : ZELK_letzterDatensatz;
  });
}

ZelkResult ZELK_CALL ZELK_HoleBatchZeile(ZELK_BATCHZEILE *Zeile) {
  static constexpr Export self{.name = "ZELK_HoleBatchZeile", .fetch = true};
  return run(self, {out("Zeile:", Zeile)},
             [&](ThreadContext *context) { return deliver(*context, Zeile, &Reading::lines, &Reading::nextLine); });
}

ZelkResult ZELK_CALL ZELK_HoleBatchKobu(ZELK_BATCHKOBU *Kobu) {
  static constexpr Export self{.name = "ZELK_HoleBatchKobu", .fetch = true};
  return run(self, {out("Kobu:", Kobu)},
             [&](ThreadContext *context) { return deliver(*context, Kobu, &Reading::costs, &Reading::nextCost); });
}
