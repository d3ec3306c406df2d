// A split posting, built piece by piece in the calling thread.
#include <algorithm>
#include <cstring>

#include "frame/call.h"
#include "frame/client.h"
#include "frame/messages.h"
#include "frame/program.h"
#include "postings/construction.h"
#include "postings/fields.h"
#include "vlba98/text.h"

using namespace frame;
using postings::Construction;

namespace {

// A text that is too long for its field is cut.
template <size_t N> void take(char (&field)[N], const char *text) {
  vlba98::strncpy2(field, text ? text : "");
}

// What is no date goes over as it is, cut, and is refused at the end.
void takeDate(char (&field)[7], const char *text) {
  if (!postings::takeDate(field, text)) take(field, text);
}

struct Addition {
  const char *Sollkonto;
  int16_t Sollart;
  const char *Habenkonto;
  int16_t Habenart;
  const char *Bruttobetrag, *Steuersatz, *Steuerbetrag, *Text;
  int16_t Kostenschablone;
  const char *Text2;
};

// A call from under a dialog of the insertion that runs leaves that one alone.
ZelkResult refuseIdle(Construction &construction) {
  if (!construction.inserting) construction.clear();
  return ZELKERR_keinInit;
}

ZelkResult add(Construction &construction, const Addition &addition) {
  ++construction.plainAdditions;
  if (!construction.started) return refuseIdle(construction);
  ZELK_TEILBUCHUNG line{};
  take(line.Sollkonto, addition.Sollkonto);
  line.Sollart = addition.Sollart;
  take(line.Habenkonto, addition.Habenkonto);
  line.Habenart = addition.Habenart;
  take(line.Bruttobetrag, addition.Bruttobetrag);
  take(line.Steuersatz, addition.Steuersatz);
  take(line.Steuerbetrag, addition.Steuerbetrag);
  take(line.Text, addition.Text);
  line.Kostenschablone = addition.Kostenschablone;
  take(line.Text2, addition.Text2);
  int32_t &count = construction.posting.Teilbuchungsanzahl;
  if (count < postings::kRecordLines)
    construction.posting.Teilbuchung[count] = line;
  else
    construction.overflow.push_back(line);
  ++count;
  return ZELK_OK;
}

ZelkResult addCost(ThreadContext &context, const char *const (&centres)[postings::kKostenstellen],
                   int32_t Kostenkennung, const char *Betrag, const char *Menge, const char *Einheit,
                   const char *Bemerkung, const char *Bemerkung2) {
  Construction &construction = postings::constructionOf(context);
  if (!construction.started) return refuseIdle(construction);
  if (construction.posting.Teilbuchungsanzahl == 0) return ZELKERR_keinInit;
  if (programSettings().basicEdition) return ZELKERR_uzl_Kostenrechnung;
  postings::CostEntry entry{};
  entry.line = size_t(construction.posting.Teilbuchungsanzahl - 1);
  for (size_t i = 0; i < std::size(centres); ++i)
    take(entry.Kostenstelle[i], centres[i]);
  entry.Kostenkennung = Kostenkennung;
  take(entry.Betrag, Betrag);
  take(entry.Menge, Menge);
  take(entry.Einheit, Einheit);
  take(entry.Bemerkung, Bemerkung);
  take(entry.Bemerkung2, Bemerkung2);
  construction.costs.push_back(entry);
  return ZELK_OK;
}

ZelkResult checkSwissRules(ThreadContext &context, Construction &construction) {
  if (construction.swissRules) return ZELK_OK;
  vldb98::Store *store = context.session();
  if (!store) return ZELKERR_Datenbank;
  ZelkResult opened = openClient(context, *store, construction.posting.Mandantennummer);
  if (opened <= 0) return opened;
  vldb98::FISTA_EXT client{};
  uint8_t found;
  if (!store->GetExtFista(client, found)) return ZELKERR_Datenbank;
  construction.swissRules = client.Schweiz;
  return construction.swissRules ? ZELK_OK : ZELKERR_Helva_only;
}

ZelkResult end(ThreadContext &context, bool insert, int32_t Fehlermeldungen) {
  Construction &construction = postings::constructionOf(context);
  if (construction.inserting) return ZELKERR_keinInit;
  bool started = construction.started;
  construction.started = false;
  ZelkResult result = ZELK_OK;
  if (construction.plainAdditions > 0 && construction.exAdditions > 0)
    result = ZELKERR_uzl_Split;
  else if (construction.exAdditions > 0 && size_t(construction.exAdditions) != construction.ownAmounts.size())
    result = refuse(context, ZELKERR_uzl_Split, resources::kSplitExVermischt);
  if (insert && result == ZELK_OK) {
    if (!started)
      result = ZELKERR_keinInit;
    else {
      construction.inserting = true;
      result = ZELK_SplitBuchungEinfuegen(&construction.posting, Fehlermeldungen);
      construction.inserting = false;
    }
  }
  construction.clear();
  return result;
}

} // namespace

ZelkResult ZELK_CALL ZELK_SplitStart(int32_t Mandantennummer, int32_t Stapelnummer, const char *Belegdatum,
                                     const char *Belegnummer, int32_t UStDirekt, int32_t Zahlungsziel,
                                     const char *OPBelegnummer, const char *Valutadatum, const char *Waehrung,
                                     int32_t Umbuchung, const char *ESR, const char *DMSID) {
  static constexpr Export self{.name = "ZELK_SplitStart"};
  return run(self,
             {number("Mandantennummer:", Mandantennummer), number("Stapelnummer:", Stapelnummer),
              text("Belegdatum:", Belegdatum), text("Belegnummer:", Belegnummer), number("USt-Direkt:", UStDirekt),
              number("Zahlungsziel:", Zahlungsziel), text("OP-Belegnummer:", OPBelegnummer),
              text("Valutadatum:", Valutadatum), text("Währung:", Waehrung), number("Umbuchung:", Umbuchung),
              text("ESR:", ESR), text("DMS-ID:", DMSID)},
             [&](ThreadContext *context) -> ZelkResult {
               Construction &construction = postings::constructionOf(*context);
               if (construction.inserting) return ZELKERR_nicht_moeglich;
               construction.clear();
               ZELK_SPLITBUCHUNG &posting = construction.posting;
               posting.Mandantennummer = Mandantennummer;
               posting.Stapelnummer = Stapelnummer;
               takeDate(posting.Belegdatum, Belegdatum);
               take(posting.Belegnummer, Belegnummer);
               posting.UStDirekt = UStDirekt;
               posting.Zahlungsziel = Zahlungsziel;
               take(posting.OPBelegnummer, OPBelegnummer);
               takeDate(posting.Valutadatum, Valutadatum);
               take(posting.Waehrung, Waehrung);
               posting.Umbuchung = Umbuchung;
               take(posting.ESR, ESR);
               take(posting.DMSID, DMSID);
               construction.started = true;
               return ZELK_OK;
             });
}

ZelkResult ZELK_CALL ZELK_SplitEinfuegen(const char *Sollkonto, int16_t Sollart, const char *Habenkonto,
                                         int16_t Habenart, const char *Bruttobetrag, const char *Steuersatz,
                                         const char *Steuerbetrag, const char *Text, int16_t Kostenschablone,
                                         const char *Text2) {
  static constexpr Export self{.name = "ZELK_SplitEinfuegen"};
  return run(self,
             {text("Sollkonto:", Sollkonto), number("Sollart:", Sollart), text("Habenkonto:", Habenkonto),
              number("Habenart:", Habenart), text("Bruttobetrag:", Bruttobetrag), text("Steuersatz:", Steuersatz),
              text("Steuerbetrag:", Steuerbetrag), text("Text:", Text), number("Kostenschablone:", Kostenschablone),
              text("Text 2:", Text2)},
             [&](ThreadContext *context) {
               return add(postings::constructionOf(*context), {Sollkonto, Sollart, Habenkonto, Habenart, Bruttobetrag,
                                                               Steuersatz, Steuerbetrag, Text, Kostenschablone, Text2});
             });
}

ZelkResult ZELK_CALL ZELK_SplitEinfuegenEx(const char *Sollkonto, int16_t Sollart, const char *Habenkonto,
                                           int16_t Habenart, const char *Bruttobetrag, const char *BruttobetragEigen,
                                           const char *Steuersatz, const char *Steuerbetrag,
                                           const char *SteuerbetragEigen, const char *Text, int16_t Kostenschablone,
                                           const char *Text2) {
  static constexpr Export self{.name = "ZELK_SplitEinfuegenEx"};
  return run(self,
             {text("Sollkonto:", Sollkonto), number("Sollart:", Sollart), text("Habenkonto:", Habenkonto),
              number("Habenart:", Habenart), text("Bruttobetrag:", Bruttobetrag),
              text("Bruttobetrag-Eigen:", BruttobetragEigen), text("Steuersatz:", Steuersatz),
              text("Steuerbetrag:", Steuerbetrag), text("Steuerbetrag-Eigen:", SteuerbetragEigen), text("Text:", Text),
              number("Kostenschablone:", Kostenschablone), text("Text 2:", Text2)},
             [&](ThreadContext *context) -> ZelkResult {
               Construction &construction = postings::constructionOf(*context);
               if (!construction.started) return refuseIdle(construction);
               if (ZelkResult swiss = checkSwissRules(*context, construction); swiss != ZELK_OK) return swiss;
               ++construction.exAdditions;
               // The plain addition below counts it again.
               --construction.plainAdditions;
               postings::OwnAmounts own{};
               take(own.Brutto, BruttobetragEigen);
               take(own.Steuer, SteuerbetragEigen);
               construction.ownAmounts[size_t(construction.posting.Teilbuchungsanzahl)] = own;
               return add(construction, {Sollkonto, Sollart, Habenkonto, Habenart, Bruttobetrag, Steuersatz,
                                         Steuerbetrag, Text, Kostenschablone, Text2});
             });
}

ZelkResult ZELK_CALL ZELK_SplitKobuEinfuegen(const char *Kostenstelle1, const char *Kostenstelle2,
                                             int32_t Kostenkennung, const char *Betrag, const char *Menge,
                                             const char *Einheit, const char *Bemerkung, const char *Bemerkung2) {
  static constexpr Export self{.name = "ZELK_SplitKobuEinfuegen"};
  return run(self,
             {text("Kostenstelle1:", Kostenstelle1), text("Kostenstelle2:", Kostenstelle2),
              number("Kostenkennung:", Kostenkennung), text("Betrag:", Betrag), text("Menge:", Menge),
              text("Einheit:", Einheit), text("Bemerkung:", Bemerkung), text("Bemerkung 2:", Bemerkung2)},
             [&](ThreadContext *context) {
               return addCost(*context, {Kostenstelle1, Kostenstelle2, nullptr, nullptr, nullptr, nullptr},
                              Kostenkennung, Betrag, Menge, Einheit, Bemerkung, Bemerkung2);
             });
}

ZelkResult ZELK_CALL ZELK_SplitKobuEinfuegenEx(const char *Kostenstelle1, const char *Kostenstelle2,
                                               int32_t Kostenkennung, const char *Betrag, const char *Menge,
                                               const char *Einheit, const char *Bemerkung, const char *Bemerkung2,
                                               const char *Kostenstelle3, const char *Kostenstelle4,
                                               const char *Kostenstelle5, const char *Kostenstelle6) {
  static constexpr Export self{.name = "ZELK_SplitKobuEinfuegenEx"};
  return run(self,
             {text("Kostenstelle1:", Kostenstelle1), text("Kostenstelle2:", Kostenstelle2),
              number("Kostenkennung:", Kostenkennung), text("Betrag:", Betrag), text("Menge:", Menge),
              text("Einheit:", Einheit), text("Bemerkung:", Bemerkung), text("Bemerkung 2:", Bemerkung2),
              text("Kostenstelle3:", Kostenstelle3), text("Kostenstelle4:", Kostenstelle4),
              text("Kostenstelle5:", Kostenstelle5), text("Kostenstelle6:", Kostenstelle6)},
             [&](ThreadContext *context) {
               return addCost(
                   *context, {Kostenstelle1, Kostenstelle2, Kostenstelle3, Kostenstelle4, Kostenstelle5, Kostenstelle6},
                   Kostenkennung, Betrag, Menge, Einheit, Bemerkung, Bemerkung2);
             });
}

void ZELK_CALL ZELK_SetAnbuBewegungsart(int32_t Bewegungsart) {
  static constexpr Export self{.name = "ZELK_SetAnbuBewegungsart"};
  run(self, {number("Bewegungsart:", Bewegungsart)}, [&](ThreadContext *context) -> ZelkResult {
    Construction &construction = postings::constructionOf(*context);
    construction.movementKinds[construction.posting.Teilbuchungsanzahl] = Bewegungsart;
    return ZELK_OK;
  });
}

void ZELK_CALL ZELK_SetDmsID(int32_t DmsId) {
  static constexpr Export self{.name = "ZELK_SetDmsID"};
  run(self, {number("DMS-ID:", DmsId)}, [&](ThreadContext *context) -> ZelkResult {
    Construction &construction = postings::constructionOf(*context);
    construction.documents[construction.posting.Teilbuchungsanzahl] = DmsId;
    return ZELK_OK;
  });
}

ZelkResult ZELK_CALL ZELK_SplitEnde(int32_t Einfuegen, int32_t Fehlermeldungen) {
  static constexpr Export self{.name = "ZELK_SplitEnde"};
  return run(self, {number("Einfügen:", Einfuegen), messages(Fehlermeldungen)},
             [&](ThreadContext *context) { return end(*context, Einfuegen != 0, Fehlermeldungen); });
}
