// Items as they were after each payment, over all fiscal years of a client.
#include "frame/client.h"
#include "frame/fetch.h"
#include "frame/messages.h"
#include "frame/program.h"
#include "openitems/outputs.h"
#include "openitems/selection.h"
#include "vlba98/date.h"
#include "vlba98/text.h"
#include "vlfn98/fiscal_year.h"

using namespace frame;
using namespace vldb98;
using openitems::ItemSelection;
using openitems::Outputs;

namespace {

constexpr bool isHistoricalTable(int32_t table) {
  return table == kHistOPDebitor || table == kHistOPKreditor;
}

// Finds the first item of a selection from a year on; that year is then the open one. \return 1, 0
ZelkResult findFromYear(Store &store, const ItemSelection &selection, int table, int year, DATENBANK &item) {
  for (; year <= selection.lastYear; ++year)
    if (vlfn98::OeffneJahr(store, year) && openitems::findFirst(store, selection, table, item) == ZELK_OK)
      return ZELK_OK;
  return ZELK_keinKonto;
}

// What a host asks for. The first that is given counts.
struct ItemRequest {
  const char *date, *document, *openItem, *account;
};

// \return 1, -64, -10
ZelkResult select(ThreadContext &context, const ItemRequest &request, ItemSelection &selection) {
  using By = ItemSelection::By;
  if (auto text = openitems::given(request.date); !text.empty()) {
    auto date = vlba98::parseDate(text);
    if (!date) return refuse(context, ZELKERR_uzl_Datum, resources::kDateInadmissible);
    selection = openitems::selectBy(By::Date, vlba98::toReversed(*date).data());
  } else if (auto document = openitems::givenNumber(request.document); !document.empty()) {
    selection = openitems::selectBy(By::Document, document);
  } else if (auto openItem = openitems::givenNumber(request.openItem); !openItem.empty()) {
    selection = openitems::selectBy(By::OpenItem, openItem);
  } else if (auto account = openitems::given(request.account); !account.empty()) {
    if (account.size() > openitems::kAccountWidth)
      return refuse(context, ZELKERR_uzl_Kontonr, resources::kAccountNumberInadmissible);
    selection = openitems::selectBy(By::Account, account);
  } else {
    selection = openitems::selectBy(By::Nothing, "");
  }
  return ZELK_OK;
}

// Delivers the pending item and moves on, into later years too; the fetch stays where it is when the store fails.
ZelkResult deliverHistoricalItem(ThreadContext &context, Outputs &outputs) {
  SharedFetch &fetch = context.fetch;
  if (!isHistoricalTable(fetch.kind)) return ZELKERR_keinInit;
  if (outputs.formMissing()) return ZELKERR_uzl_Format;
  if (!fetch.pending) return ZELKERR_keinDatensatz;
  const auto &selection = std::any_cast<const ItemSelection &>(fetch.own);
  const int table = fetch.kind;
  Store &store = resumeFetch(context);
  outputs.lookUp(store, fetch.record);
  DATENBANK next{};
  ZelkResult result = ZELK_OK;
  if (const auto following = readFollowing(fetch, store); following && openitems::holds(selection, *following))
    next = *following;
  else
    result = findFromYear(store, selection, table, vlba98::yearOfCode(fetch.year) + 1, next);
  outputs.write(fetch.record, table, store.HoleFista());
  if (result == ZELK_OK) {
    fetch.moveTo(store, fetch.file, next);
    return ZELK_OK;
  }
  fetch.end();
  return ZELK_letzterDatensatz;
}

} // namespace

ZelkResult ZELK_CALL ZELK_InitHoleHistOP(int32_t Mandantennummer, const char *Kontonummer, int32_t Kontoart,
                                         const char *Buchungsdatum, const char *Belegnr, const char *OPBelegnr,
                                         int32_t Fehlermeldungen) {
  static constexpr Export self{.name = "ZELK_InitHoleHistOP"};
  return run(self,
             {number("Mandantennummer:", Mandantennummer), text("Kontonummer:", Kontonummer),
              number("Kontoart:", Kontoart), text("Buchungsdatum:", Buchungsdatum), text("Belegnr:", Belegnr),
              text("OP-Belegnr:", OPBelegnr), messages(Fehlermeldungen)},
             [&](ThreadContext *context) -> ZelkResult {
               context->fetch.end();
               if (programSettings().basicEdition)
                 return refuse(*context, ZELKERR_nur_PlusVersion, resources::kHistoricalItems);
               if (Kontoart != ZELK_KREDITOR && Kontoart != ZELK_DEBITOR)
                 return refuse(*context, ZELKERR_uzl_Kontoart, resources::kAccountKindInadmissible);
               Store &store = context->store();
               if (ZelkResult opened = openClient(*context, store, Mandantennummer); opened <= 0) return opened;
               ItemSelection selection;
               ZelkResult result = select(*context, {Buchungsdatum, Belegnr, OPBelegnr, Kontonummer}, selection);
               if (result != ZELK_OK) return result;
               const FIRMENSTAMM &client = store.HoleFista();
               selection.lastYear = vlba98::yearOfCode(client.AktJahr);
               const int first = client.StartJahr[0] ? vlba98::yearOfCode(client.StartJahr) : selection.lastYear;
               const int table = Kontoart == ZELK_KREDITOR ? kHistOPKreditor : kHistOPDebitor;
               DATENBANK item{};
               result = findFromYear(store, selection, table, first, item);
               if (result != ZELK_OK) return result;
               context->fetch.begin(store, openitems::fileOf(table, selection), item, selection);
               return ZELK_OK;
             });
}

ZelkResult ZELK_CALL ZELK_HoleHistOP(char *Kontonummer, char *Kuerzel, char *Name, char *Belegnummer,
                                     char *OPBelegnummer, char *Belegdatum, char *Valutadatum, char *Skontodatum1,
                                     char *Skontosatz1, char *Skontodatum2, char *Skontosatz2, char *Faelligkeitsdatum,
                                     char *Text, int32_t Ausgabeart, char *Bruttobetrag, char *Ausstand, char *Waehrung,
                                     int32_t *Mahnstufe, char *Mahndatum, char *Bemerkung, char *Gegenkonto,
                                     int32_t *Zahlziel, int32_t *Zahlungssperre, char *Skontokonto1, char *Skontokonto2,
                                     char *Steuersatz1, char *Steuersatz2, char *Ausstand2, char *GWBetrag,
                                     int32_t *Mahnsperre, char *Zahlung, char *Zahldatum, char *Benutzer,
                                     char *Skontobetrag, char *Zahlbelegnr, char *Zahltext, int32_t *Zahlungsart,
                                     char *Text2, char *Zahltext2, char *DMSID, int32_t *Inkasso, int32_t *InkassoAkte,
                                     int32_t *InkassoForderung, int32_t *InkassoMahnkosten) {
  static constexpr Export self{.name = "ZELK_HoleHistOP", .fetch = true};
  void *const pointers[Outputs::kHistorical] = {Kontonummer,
                                                Kuerzel,
                                                Name,
                                                Belegnummer,
                                                OPBelegnummer,
                                                Belegdatum,
                                                Valutadatum,
                                                Skontodatum1,
                                                Skontosatz1,
                                                Skontodatum2,
                                                Skontosatz2,
                                                Faelligkeitsdatum,
                                                Text,
                                                nullptr,
                                                Bruttobetrag,
                                                Ausstand,
                                                Waehrung,
                                                Mahnstufe,
                                                Mahndatum,
                                                Bemerkung,
                                                Gegenkonto,
                                                Zahlziel,
                                                Zahlungssperre,
                                                Skontokonto1,
                                                Skontokonto2,
                                                Steuersatz1,
                                                Steuersatz2,
                                                Ausstand2,
                                                GWBetrag,
                                                Mahnsperre,
                                                Zahlung,
                                                Zahldatum,
                                                Benutzer,
                                                Skontobetrag,
                                                Zahlbelegnr,
                                                Zahltext,
                                                Zahlungsart,
                                                Text2,
                                                Zahltext2,
                                                DMSID,
                                                Inkasso,
                                                InkassoAkte,
                                                InkassoForderung,
                                                InkassoMahnkosten};
  Outputs outputs(Ausgabeart, pointers);
  return run(self, outputs.parameters(),
             [&](ThreadContext *context) { return deliverHistoricalItem(*context, outputs); });
}
