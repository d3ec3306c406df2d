#include "evaluations/turnover.h"

#include <cstring>

#include "frame/client.h"
#include "frame/snapshot.h"
#include "store/typed.h"
#include "vlba98/date.h"
#include "vlfn98/accounts.h"
#include "vlfn98/cost_postings.h"
#include "vlfn98/periods.h"

using namespace frame;
using namespace vldb98;

namespace evaluations {
namespace {

Outcome openYear(Store &store, int32_t year) {
  // Opening the client has opened its current booking year.
  if (year < 0) return {};
  return vlfn98::OeffneJahr(store, year) ? Outcome{} : inadmissible(ZELKERR_uzl_Zeitraum, "Das Geschäftsjahr ist");
}

Outcome checkAccount(const AccountRequest &account) {
  if (!vlfn98::isAccountKind(account.kind)) return {ZELKERR_uzl_Kontoart, resources::kAccountKindInadmissible};
  if (account.number && std::strlen(account.number) >= sizeof SACHKONTO::Nr)
    return {ZELKERR_uzl_Kontonr, resources::kAccountNumberInadmissible};
  return {};
}

// Reads the account and sums it up to a day, in one state of the books.
Outcome sumUpTo(Store &store, const AccountRequest &account, const char *date, vlfn98::AccountValues &values) {
  if (Outcome opened = openQuietly(store, account.client); opened.result <= 0) return opened;
  if (!vlfn98::isAccountKind(account.kind)) return {ZELKERR_uzl_Kontoart, resources::kAccountKindInadmissible};
  const auto day = vlba98::parseDate(date);
  if (!day) return {ZELKERR_uzl_Datum, resources::kDateInadmissible};

  const auto year = vlfn98::findFiscalYear(store, *day);
  // In no fiscal year there is no account.
  if (!year) return noSuchAccount(account.kind);
  vlfn98::openFiscalYear(store, *year);
  const int table = vlfn98::KzFromZELKArt(account.kind);
  waitForYear(store, kYearRecords, table);
  DATENBANK record{};
  if (Outcome read = readAccount(store, account, record); read.result <= 0) return read;
  waitForYear(store, kYearEntries, -1);

  const int month = vlfn98::fiscalMonth(*year, *day);
  values = vlfn98::sumOfValues(table, record, {1, month - 1, true, false});
  const vlfn98::DateRange days{vlfn98::daysOfMonths(*year, month, month).first, *day};
  values += table == kKost ? vlfn98::costsOfCentre(store, record.Kost, days)
                           : vlfn98::GetKontoMonatsWerte(store, table, account.number, days);
  return {};
}

} // namespace

std::optional<vlfn98::ValueRange> parsePeriod(int32_t code) {
  const int32_t number = code & vlfn98::kPeriodMask;
  vlfn98::ValueRange range;
  if (number < 1 || number > vlfn98::kWholeYear) return std::nullopt;
  if (number < vlfn98::kFirstQuarter)
    range.first = range.last = number;
  else if (number < vlfn98::kOpeningOnly) {
    range.first = 3 * (number - vlfn98::kFirstQuarter) + 1;
    range.last = range.first + 2;
  } else if (number == vlfn98::kAllMonths || number == vlfn98::kWholeYear)
    range.last = vlfn98::kMonths;
  if ((code & vlfn98::kCumulative) && range.first <= range.last) range.first = 1;
  if (number == vlfn98::kOpeningOnly || number == vlfn98::kClosingOnly) {
    range.opening = number == vlfn98::kOpeningOnly;
    range.closing = number == vlfn98::kClosingOnly;
  } else {
    range.opening = number == vlfn98::kWholeYear || ((code & vlfn98::kWithOpening) && range.first == 1);
    range.closing = number == vlfn98::kWholeYear || ((code & vlfn98::kWithClosing) && range.last == vlfn98::kMonths);
  }
  return range;
}

Outcome turnover(ThreadContext &context, const AccountRequest &account, int32_t period, int32_t year, int32_t form,
                 const TurnoverOutputs &outputs) {
  if (Outcome checked = checkForm(form); checked.result <= 0) return checked;
  if (Outcome checked = checkAccount(account); checked.result <= 0) return checked;
  const auto range = parsePeriod(period);
  if (!range) return inadmissible(ZELKERR_uzl_Zeitraum, "Die Zeitraumangabe ist");
  Store &store = context.store();
  DATENBANK record;
  const Outcome read = inOneState(store, [&]() -> Outcome {
    if (Outcome opened = openQuietly(store, account.client); opened.result <= 0) return opened;
    if (Outcome opened = openYear(store, year); opened.result <= 0) return opened;
    return readAccount(store, account, record);
  });
  if (read.result <= 0) return read;
  const vlfn98::AccountValues values = vlfn98::sumOfValues(vlfn98::KzFromZELKArt(account.kind), record, *range);
  if (account.kind == ZELK_KOSTENSTELLE)
    return deliver(form, {{outputs.balance, values.balance()}, {outputs.euroBalance, values.euroBalance()}});
  return deliver(form, {{outputs.debit, values.debit},
                        {outputs.credit, values.credit},
                        {outputs.balance, values.balance()},
                        {outputs.euroDebit, values.euroDebit},
                        {outputs.euroCredit, values.euroCredit},
                        {outputs.euroBalance, values.euroBalance()}});
}

Outcome balanceOnDay(ThreadContext &context, const AccountRequest &account, const char *date, int32_t form,
                     char *balance, char *euroBalance) {
  if (Outcome checked = checkForm(form); checked.result <= 0) return checked;
  Store &store = context.store();
  Outcome outcome;
  vlfn98::AccountValues values;
  inSnapshot(store, [&] {
    outcome = sumUpTo(store, account, date, values);
    return outcome.result;
  });
  if (outcome.result <= 0) return outcome;
  return deliver(form, {{balance, values.balance()}, {euroBalance, values.euroBalance()}});
}

} // namespace evaluations
