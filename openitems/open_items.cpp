// The items that are open now.
#include "frame/client.h"
#include "frame/fetch.h"
#include "frame/messages.h"
#include "openitems/outputs.h"
#include "openitems/selection.h"
#include "store/typed.h"
#include "vlfn98/accounts.h"

using namespace frame;
using namespace vldb98;
using openitems::ItemSelection;
using openitems::Outputs;

namespace {

constexpr bool isOpenItemTable(int32_t table) {
  return table == kOPKreditor || table == kOPDebitor;
}

// The account of a filter must exist in the client's current year. \return 1, -10
ZelkResult checkAccount(ThreadContext &context, Store &store, int32_t kind, std::string_view number) {
  const In accounts{store, FileNumber(vlfn98::KzFromZELKArt(kind))};
  const bool known = number.size() <= openitems::kAccountWidth && exists<PERSONENKONTO>(accounts, number);
  return known ? ZELK_OK : refuse(context, ZELKERR_uzl_Kontonr, resources::kAccountNumberInadmissible);
}

// Delivers the pending item and moves on; the fetch stays where it is when the store fails.
ZelkResult deliverOpenItem(ThreadContext &context, Outputs &outputs) {
  SharedFetch &fetch = context.fetch;
  if (!isOpenItemTable(fetch.kind)) return ZELKERR_keinInit;
  if (outputs.formMissing()) return ZELKERR_uzl_Format;
  if (!fetch.pending) return ZELKERR_keinDatensatz;
  Store &store = resumeFetch(context);
  outputs.lookUp(store, fetch.record);
  const auto next = readFollowing(fetch, store);
  outputs.write(fetch.record, fetch.kind, store.HoleFista());
  fetch.pending = next && openitems::holds(std::any_cast<const ItemSelection &>(fetch.own), *next);
  if (!fetch.pending) return ZELK_letzterDatensatz;
  fetch.record = *next;
  return ZELK_OK;
}

} // namespace

ZelkResult ZELK_CALL ZELK_InitHoleOP(int32_t Mandantennummer, const char *Kontonummer, int32_t Kontoart,
                                     int32_t Fehlermeldungen) {
  static constexpr Export self{.name = "ZELK_InitHoleOP"};
  return run(self,
             {number("Mandantennummer:", Mandantennummer), text("Kontonummer:", Kontonummer),
              number("Kontoart:", Kontoart), messages(Fehlermeldungen)},
             [&](ThreadContext *context) -> ZelkResult {
               context->fetch.end();
               if (Kontoart != ZELK_KREDITOR && Kontoart != ZELK_DEBITOR)
                 return refuse(*context, ZELKERR_uzl_Kontoart, resources::kAccountKindInadmissible);
               Store &store = context->store();
               if (ZelkResult opened = openClient(*context, store, Mandantennummer); opened <= 0) return opened;
               std::string_view account = openitems::given(Kontonummer);
               if (!account.empty())
                 if (ZelkResult checked = checkAccount(*context, store, Kontoart, account); checked <= 0)
                   return checked;
               using By = ItemSelection::By;
               ItemSelection selection = openitems::selectBy(account.empty() ? By::Nothing : By::Account, account);
               const int table = Kontoart == ZELK_KREDITOR ? kOPKreditor : kOPDebitor;
               DATENBANK first{};
               ZelkResult result = openitems::findFirst(store, selection, table, first);
               if (result != ZELK_OK) return result;
               context->fetch.begin(store, openitems::fileOf(table, selection), first, selection);
               return ZELK_OK;
             });
}

ZelkResult ZELK_CALL ZELK_HoleOP(char *Kontonummer, char *Kuerzel, char *Name, char *Belegnummer, char *OPBelegnummer,
                                 char *Belegdatum, char *Valutadatum, char *Skontodatum1, char *Skontosatz1,
                                 char *Skontodatum2, char *Skontosatz2, char *Faelligkeitsdatum, char *Text,
                                 int32_t Ausgabeart, char *Bruttobetrag, char *Ausstand, char *Waehrung,
                                 int32_t *Mahnstufe, char *Mahndatum, char *Bemerkung, char *Gegenkonto,
                                 int32_t *Zahlziel, int32_t *Zahlungssperre, char *Skontokonto1, char *Skontokonto2,
                                 char *Steuersatz1, char *Steuersatz2, char *Ausstand2, char *GWBetrag,
                                 int32_t *Mahnsperre, char *Text2, char *DMSID, int32_t *Inkasso, int32_t *InkassoAkte,
                                 int32_t *InkassoForderung, int32_t *InkassoMahnkosten) {
  static constexpr Export self{.name = "ZELK_HoleOP", .fetch = true};
  void *const pointers[Outputs::kOpen] = {
      Kontonummer,  Kuerzel,      Name,         Belegnummer,  OPBelegnummer,    Belegdatum,
      Valutadatum,  Skontodatum1, Skontosatz1,  Skontodatum2, Skontosatz2,      Faelligkeitsdatum,
      Text,         nullptr,      Bruttobetrag, Ausstand,     Waehrung,         Mahnstufe,
      Mahndatum,    Bemerkung,    Gegenkonto,   Zahlziel,     Zahlungssperre,   Skontokonto1,
      Skontokonto2, Steuersatz1,  Steuersatz2,  Ausstand2,    GWBetrag,         Mahnsperre,
      Text2,        DMSID,        Inkasso,      InkassoAkte,  InkassoForderung, InkassoMahnkosten};
  Outputs outputs(Ausgabeart, pointers);
  return run(self, outputs.parameters(), [&](ThreadContext *context) { return deliverOpenItem(*context, outputs); });
}
