// The fetch of budget values.
#include <algorithm>
#include <cstring>

#include "evaluations/figures.h"
#include "frame/call.h"
#include "frame/client.h"
#include "frame/fetch.h"
#include "frame/money_output.h"
#include "store/typed.h"
#include "vlba98/date.h"
#include "vlba98/money.h"
#include "vlba98/text.h"
#include "vlfn98/account_fields.h"
#include "vlfn98/fiscal_year.h"

using namespace evaluations;
using namespace frame;
using namespace vldb98;

namespace {

constexpr int kValues = vlfn98::kMonths + 1; // the months and the year

int tableOfKind(int32_t kind) {
  return kind == ZELK_KOSTENSTELLE ? kKost
         : kind == ZELK_SACHKONTO  ? kSachkonto
         : kind == ZELK_DEBITOR    ? kDebitor
                                   : kKreditor;
}

Outcome openYear(Store &store, int32_t year) {
  const FIRMENSTAMM &client = store.HoleFista();
  const int current = vlba98::yearOfCode(client.AktJahr);
  const int first = *client.StartJahr ? vlba98::yearOfCode(client.StartJahr) : current;
  if (year == 0) year = current;
  if (year >= first && year <= current && vlfn98::OeffneJahr(store, year)) return {};
  return {ZELKERR_uzl_Zeitraum, resources::kIsInadmissible, "Zeitraum"};
}

/// The cost centres that a fetch of their budget values is limited to; kept in the fetch.
struct Centres {
  int32_t dimension;
  char reference[8]; ///< blank-padded; empty: whatever theirs is
};

bool belongs(const SharedFetch &fetch, const DATENBANK &record) {
  if (tableOf(fetch.file) != kKost) return true;
  const auto &wanted = std::any_cast<const Centres &>(fetch.own);
  const KOST &centre = record.Kost;
  return centre.Dimension == wanted.dimension &&
         (!*wanted.reference || std::memcmp(centre.Kostref, wanted.reference, sizeof wanted.reference) == 0);
}

// Goes on to the next record that belongs to the fetch, from one that may be. \return whether there is one
bool skip(Store &store, const SharedFetch &fetch, DATENBANK &record) {
  while (!belongs(fetch, record)) {
    const auto following = vldb98::next<DATENBANK>({store, fetch.file});
    if (!following) return false;
    record = *following;
  }
  return true;
}

// Puts the fetch on its first record.
ZelkResult start(ThreadContext &context, Store &store, FileNumber file, const SCHLUESSEL *from, int32_t dimension,
                 const char *reference) {
  if (ZelkResult started = startFetch(context, store, file, from, ZELK_keinKonto); started != ZELK_OK) return started;
  SharedFetch &fetch = context.fetch;
  fetch.kind = kYearRecords;
  Centres wanted{dimension, ""};
  if (reference && *reference) {
    vlba98::strncpy2(wanted.reference, reference);
    vlba98::FillWithSpaces(wanted.reference);
  }
  fetch.own = wanted;
  SharedFetch standing = std::exchange(fetch, {});
  if (!skip(store, standing, standing.record)) return ZELK_keinKonto;
  fetch = standing;
  return ZELK_OK;
}

// Reads the next record that belongs to the fetch.
ZelkResult readNext(ThreadContext &context, DATENBANK &next) {
  ZelkResult result = readNext(context, kYearRecords, next);
  if (result != ZELK_OK) return result;
  try {
    return skip(context.store(), context.fetch, next) ? ZELK_OK : ZELK_letzterDatensatz;
  } catch (const StoreFailed &) {
    context.fetch.end();
    throw;
  }
}

// The value of a month from 0, of the year after the last.
int64_t budgetValue(const SOLLWERTE &values, int i) {
  return vlba98::parseMoney(i < vlfn98::kMonths ? values.Monat[i] : values.Gesamt).value_or(0);
}

const SOLLWERTE &budgetOf(int table, const DATENBANK &record) {
  return table == kKost        ? record.Kost.Sollwerte
         : table == kSachkonto ? record.Sachkonto.Sollwerte
                               : record.Personenkonto.Sollwerte;
}

int32_t budgetInEuro(int table, const DATENBANK &record) {
  return table == kKost        ? record.Kost.SWinEuro
         : table == kSachkonto ? record.Sachkonto.SWinEuro
                               : record.Personenkonto.SWinEuro;
}

Outcome deliverRecord(int table, const DATENBANK &record, int32_t form, char *const (&buffers)[kValues]) {
  int64_t values[kValues];
  char internal[vlba98::moneyWidth + 1];
  for (int i = 0; i < kValues; ++i) {
    values[i] = budgetValue(budgetOf(table, record), i);
    if (table == kKost) values[i] += budgetValue(record.Kost.Sollwerte2, i);
    if (buffers[i] && !vlba98::formatMoney(values[i], internal)) return {ZELKERR_sonst, resources::kAmountTooGreat};
  }
  for (int i = 0; i < kValues; ++i)
    if (buffers[i] && vlba98::formatMoney(values[i], internal)) formatAmount(form, buffers[i], internal);
  return {};
}

} // namespace

ZelkResult ZELK_CALL ZELK_InitHoleSollwerte(int32_t Mandantennummer, int32_t Kontoart, int32_t Jahr, int32_t Sortierung,
                                            const char *Ab, int32_t Dimension, const char *Kostref,
                                            int32_t Fehlermeldungen) {
  static constexpr Export self{.name = "ZELK_InitHoleSollwerte"};
  return run(self,
             {number("Mandantennummer:", Mandantennummer), number("Kontoart:", Kontoart), number("Jahr:", Jahr),
              number("Sortierung:", Sortierung), text("Ab:", Ab), number("Dimension:", Dimension),
              text("Kostref:", Kostref), messages(Fehlermeldungen)},
             [&](ThreadContext *context) -> ZelkResult {
               context->fetch.end();
               if (Sortierung < 0 || Sortierung >= vlfn98::kOrders)
                 return refuse(*context, ZELKERR_uzl_Sortierung, resources::kOrderInadmissible);
               Store &store = context->store();
               if (ZelkResult opened = openClient(*context, store, Mandantennummer); opened <= 0) return opened;
               if (Outcome opened = openYear(store, Jahr); opened.result <= 0) return finish(*context, opened);
               const int table = tableOfKind(Kontoart);
               waitForYear(store, kYearRecords, table);
               const FileNumber file = fileNumber(table, vlfn98::keyIndex(table, Sortierung));
               if (!Ab || !*Ab) return start(*context, store, file, nullptr, Dimension, Kostref);
               const SCHLUESSEL key = keyOf(file, Ab);
               return start(*context, store, file, &key, Dimension, Kostref);
             });
}

ZelkResult ZELK_CALL ZELK_HoleSollwerte(char *Kontonummer, char *Kuerzel, char *Name, int32_t Ausgabeart, char *pszMon1,
                                        char *pszMon2, char *pszMon3, char *pszMon4, char *pszMon5, char *pszMon6,
                                        char *pszMon7, char *pszMon8, char *pszMon9, char *pszMon10, char *pszMon11,
                                        char *pszMon12, char *pszGesamt, int32_t *plSWinEuro) {
  static constexpr Export self{.name = "ZELK_HoleSollwerte", .fetch = true};
  char *const values[kValues] = {pszMon1, pszMon2, pszMon3,  pszMon4,  pszMon5,  pszMon6,  pszMon7,
                                 pszMon8, pszMon9, pszMon10, pszMon11, pszMon12, pszGesamt};
  return run(self,
             {out("Kontonummer:", Kontonummer), out("Kürzel:", Kuerzel), out("Name:", Name),
              number("Ausgabeart:", Ausgabeart), out("Mon1:", pszMon1), out("Mon2:", pszMon2), out("Mon3:", pszMon3),
              out("Mon4:", pszMon4), out("Mon5:", pszMon5), out("Mon6:", pszMon6), out("Mon7:", pszMon7),
              out("Mon8:", pszMon8), out("Mon9:", pszMon9), out("Mon10:", pszMon10), out("Mon11:", pszMon11),
              out("Mon12:", pszMon12), out("Gesamt:", pszGesamt), out("SWinEuro:", plSWinEuro)},
             [&](ThreadContext *context) -> ZelkResult {
               SharedFetch &fetch = context->fetch;
               if (fetch.kind != kYearRecords) return ZELKERR_keinInit;
               if (!fetch.pending) return ZELKERR_keinDatensatz;
               const bool anyValue = std::any_of(std::begin(values), std::end(values), [](char *v) { return v; });
               if (anyValue && !isAmountForm(Ausgabeart)) return finish(*context, checkForm(Ausgabeart));
               DATENBANK next{};
               const ZelkResult ahead = readNext(*context, next);
               if (ahead < 0) return ahead;
               const int table = tableOf(fetch.file);
               const Outcome delivered = deliverRecord(table, fetch.record, Ausgabeart, values);
               if (delivered.result <= 0) return finish(*context, delivered);
               const vlfn98::AccountFields account = vlfn98::accountOf(table, fetch.record);
               if (Kontonummer) {
                 vlba98::strncpy2(Kontonummer, account.number, sizeof SACHKONTO::Nr);
                 vlba98::KillSpaces(Kontonummer);
               }
               if (Kuerzel) vlba98::strncpy2(Kuerzel, account.shortName, sizeof SACHKONTO::Kuerzel);
               if (Name) vlba98::strncpy2(Name, account.name, sizeof SACHKONTO::Name);
               if (plSWinEuro) *plSWinEuro = budgetInEuro(table, fetch.record);
               fetch.pending = ahead == ZELK_OK;
               if (fetch.pending) fetch.record = next;
               return ahead;
             });
}
