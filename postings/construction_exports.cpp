// A split posting, built piece by piece in the calling thread.
#include <utility>

#include "frame/client.h"
#include "frame/messages.h"
#include "frame/program.h"
#include "postings/attempts.h"
#include "postings/construction.h"
#include "postings/fields.h"
#include "store/typed.h"

using namespace frame;
using postings::Construction, postings::FlatArgument, postings::FlatArguments;

namespace {

ZelkResult refuseIdle(Construction &construction) {
  construction = {};
  return ZELKERR_keinInit;
}

ZelkResult add(Construction &construction, FlatArguments arguments) {
  if (!construction.started) return refuseIdle(construction);
  ++construction.plainAdditions;
  postings::PostingLine line{};
  postings::take(line, arguments);
  construction.posting.add(line);
  return ZELK_OK;
}

// Own amounts are those of the rules of Switzerland. \return 1 where the client's books are kept under them
ZelkResult checkSwissRules(ThreadContext &context, Construction &construction) {
  if (construction.swissRules) return ZELK_OK;
  vldb98::Store &store = context.store();
  ZelkResult opened = openClient(context, store, construction.posting.head.Mandantennummer);
  if (opened <= 0) return opened;
  const auto client = vldb98::find<vldb98::FISTA_EXT>(store, uint16_t(store.HoleFista().Nummer));
  construction.swissRules = client && client->Schweiz;
  return construction.swissRules ? ZELK_OK : ZELKERR_Helva_only;
}

ZelkResult addWithOwnAmounts(ThreadContext &context, FlatArguments arguments) {
  Construction &construction = postings::constructionOf(context);
  if (!construction.started) return refuseIdle(construction);
  if (ZelkResult swiss = checkSwissRules(context, construction); swiss != ZELK_OK) return swiss;
  ++construction.exAdditions;
  postings::PostingLine line{};
  postings::take(line, arguments);
  postings::take(line.own.emplace(), arguments);
  construction.posting.add(line);
  return ZELK_OK;
}

ZelkResult addCost(Construction &construction, FlatArguments arguments) {
  if (!construction.started) return refuseIdle(construction);
  if (construction.posting.lines.empty()) return ZELKERR_keinInit;
  if (programSettings().basicEdition) return ZELKERR_uzl_Kostenrechnung;
  postings::PostingCost cost{};
  postings::take(cost, arguments);
  construction.posting.lines.back().costs.push_back(cost);
  return ZELK_OK;
}

// What is set before the first line belongs to none.
void setInLastLine(Construction &construction, int32_t postings::PostingLine::*value, int32_t to) {
  if (!construction.posting.lines.empty()) construction.posting.lines.back().*value = to;
}

ZelkResult end(ThreadContext &context, bool insert, int32_t Fehlermeldungen) {
  // It has ended, whatever it comes to: who calls from under a dialog of the insertion finds nothing begun.
  const Construction ended = std::exchange(postings::constructionOf(context), {});
  if (ended.plainAdditions > 0 && ended.exAdditions > 0) return ZELKERR_uzl_Split;
  if (ended.exAdditions > 0 && ended.exAdditions != ended.linesWithOwnAmounts())
    return refuse(context, ZELKERR_uzl_Split, resources::kSplitExMixed);
  if (!insert) return ZELK_OK;
  if (!ended.started) return ZELKERR_keinInit;
  return postings::insertWithin(context, ended.posting, Fehlermeldungen);
}

} // namespace

ZelkResult ZELK_CALL ZELK_SplitStart(int32_t Mandantennummer, int32_t Stapelnummer, const char *Belegdatum,
                                     const char *Belegnummer, int32_t UStDirekt, int32_t Zahlungsziel,
                                     const char *OPBelegnummer, const char *Valutadatum, const char *Waehrung,
                                     int32_t Umbuchung, const char *ESR, const char *DMSID) {
  static constexpr Export self{.name = "ZELK_SplitStart"};
  const FlatArgument arguments[] = {ZELK_FLAT(Mandantennummer), ZELK_FLAT(Stapelnummer), ZELK_FLAT(Belegdatum),
                                    ZELK_FLAT(Belegnummer),     ZELK_FLAT(UStDirekt),    ZELK_FLAT(Zahlungsziel),
                                    ZELK_FLAT(OPBelegnummer),   ZELK_FLAT(Valutadatum),  ZELK_FLAT(Waehrung),
                                    ZELK_FLAT(Umbuchung),       ZELK_FLAT(ESR),          ZELK_FLAT(DMSID)};
  return run(self, postings::parametersOf(arguments), [&](ThreadContext *context) -> ZelkResult {
    Construction &construction = postings::constructionOf(*context) = {};
    postings::take(construction.posting.head, arguments);
    construction.started = true;
    return ZELK_OK;
  });
}

ZelkResult ZELK_CALL ZELK_SplitEinfuegen(const char *Sollkonto, int16_t Sollart, const char *Habenkonto,
                                         int16_t Habenart, const char *Bruttobetrag, const char *Steuersatz,
                                         const char *Steuerbetrag, const char *Text, int16_t Kostenschablone,
                                         const char *Text2) {
  static constexpr Export self{.name = "ZELK_SplitEinfuegen"};
  const FlatArgument arguments[] = {ZELK_FLAT(Sollkonto),    ZELK_FLAT(Sollart),      ZELK_FLAT(Habenkonto),
                                    ZELK_FLAT(Habenart),     ZELK_FLAT(Bruttobetrag), ZELK_FLAT(Steuersatz),
                                    ZELK_FLAT(Steuerbetrag), ZELK_FLAT(Text),         ZELK_FLAT(Kostenschablone),
                                    ZELK_FLAT(Text2)};
  return run(self, postings::parametersOf(arguments),
             [&](ThreadContext *context) { return add(postings::constructionOf(*context), arguments); });
}

ZelkResult ZELK_CALL ZELK_SplitEinfuegenEx(const char *Sollkonto, int16_t Sollart, const char *Habenkonto,
                                           int16_t Habenart, const char *Bruttobetrag, const char *BruttobetragEigen,
                                           const char *Steuersatz, const char *Steuerbetrag,
                                           const char *SteuerbetragEigen, const char *Text, int16_t Kostenschablone,
                                           const char *Text2) {
  static constexpr Export self{.name = "ZELK_SplitEinfuegenEx"};
  const FlatArgument arguments[] = {ZELK_FLAT(Sollkonto),  ZELK_FLAT(Sollart),         ZELK_FLAT(Habenkonto),
                                    ZELK_FLAT(Habenart),   ZELK_FLAT(Bruttobetrag),    ZELK_FLAT(BruttobetragEigen),
                                    ZELK_FLAT(Steuersatz), ZELK_FLAT(Steuerbetrag),    ZELK_FLAT(SteuerbetragEigen),
                                    ZELK_FLAT(Text),       ZELK_FLAT(Kostenschablone), ZELK_FLAT(Text2)};
  return run(self, postings::parametersOf(arguments),
             [&](ThreadContext *context) { return addWithOwnAmounts(*context, arguments); });
}

ZelkResult ZELK_CALL ZELK_SplitKobuEinfuegen(const char *Kostenstelle1, const char *Kostenstelle2,
                                             int32_t Kostenkennung, const char *Betrag, const char *Menge,
                                             const char *Einheit, const char *Bemerkung, const char *Bemerkung2) {
  static constexpr Export self{.name = "ZELK_SplitKobuEinfuegen"};
  const FlatArgument arguments[] = {ZELK_FLAT(Kostenstelle1), ZELK_FLAT(Kostenstelle2), ZELK_FLAT(Kostenkennung),
                                    ZELK_FLAT(Betrag),        ZELK_FLAT(Menge),         ZELK_FLAT(Einheit),
                                    ZELK_FLAT(Bemerkung),     ZELK_FLAT(Bemerkung2)};
  return run(self, postings::parametersOf(arguments),
             [&](ThreadContext *context) { return addCost(postings::constructionOf(*context), arguments); });
}

ZelkResult ZELK_CALL ZELK_SplitKobuEinfuegenEx(const char *Kostenstelle1, const char *Kostenstelle2,
                                               int32_t Kostenkennung, const char *Betrag, const char *Menge,
                                               const char *Einheit, const char *Bemerkung, const char *Bemerkung2,
                                               const char *Kostenstelle3, const char *Kostenstelle4,
                                               const char *Kostenstelle5, const char *Kostenstelle6) {
  static constexpr Export self{.name = "ZELK_SplitKobuEinfuegenEx"};
  const FlatArgument arguments[] = {ZELK_FLAT(Kostenstelle1), ZELK_FLAT(Kostenstelle2), ZELK_FLAT(Kostenkennung),
                                    ZELK_FLAT(Betrag),        ZELK_FLAT(Menge),         ZELK_FLAT(Einheit),
                                    ZELK_FLAT(Bemerkung),     ZELK_FLAT(Bemerkung2),    ZELK_FLAT(Kostenstelle3),
                                    ZELK_FLAT(Kostenstelle4), ZELK_FLAT(Kostenstelle5), ZELK_FLAT(Kostenstelle6)};
  return run(self, postings::parametersOf(arguments),
             [&](ThreadContext *context) { return addCost(postings::constructionOf(*context), arguments); });
}

void ZELK_CALL ZELK_SetAnbuBewegungsart(int32_t Bewegungsart) {
  static constexpr Export self{.name = "ZELK_SetAnbuBewegungsart"};
  run(self, {number("Bewegungsart:", Bewegungsart)}, [&](ThreadContext *context) -> ZelkResult {
    setInLastLine(postings::constructionOf(*context), &postings::PostingLine::movementKind, Bewegungsart);
    return ZELK_OK;
  });
}

void ZELK_CALL ZELK_SetDmsID(int32_t DmsId) {
  static constexpr Export self{.name = "ZELK_SetDmsID"};
  run(self, {number("DMS-ID:", DmsId)}, [&](ThreadContext *context) -> ZelkResult {
    setInLastLine(postings::constructionOf(*context), &postings::PostingLine::document, DmsId);
    return ZELK_OK;
  });
}

ZelkResult ZELK_CALL ZELK_SplitEnde(int32_t Einfuegen, int32_t Fehlermeldungen) {
  static constexpr Export self{.name = "ZELK_SplitEnde"};
  return run(self, {number("Einfügen:", Einfuegen), messages(Fehlermeldungen)},
             [&](ThreadContext *context) { return end(*context, Einfuegen != 0, Fehlermeldungen); });
}
