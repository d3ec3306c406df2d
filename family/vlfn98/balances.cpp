#include "vlfn98/balances.h"

#include <iterator>

#include "store/typed.h"
#include "vlba98/money.h"
#include "vlba98/text.h"

using namespace vldb98;

namespace vlfn98 {
namespace {

template <class Record> const char *valueOf(const Record &account, int kind, int currency, int index) {
  const KONTOWERTE &values = currency == kEuro ? account.EuroWerte : account.Werte;
  switch (kind) {
  case kOpeningDebit:
    return values.Eroeffnung.Soll;
  case kOpeningCredit:
    return values.Eroeffnung.Haben;
  case kClosingDebit:
    return values.Abschluss.Soll;
  case kClosingCredit:
    return values.Abschluss.Haben;
  default:
    const WERTEPAAR &month = values.Monat[index / 2];
    return index % 2 ? month.Haben : month.Soll;
  }
}

// What the store delivers is a money text, or empty for zero.
int64_t hundredths(const char *internalForm) {
  return vlba98::parseMoney(internalForm).value_or(0);
}

template <class Record> AccountValues sum(const Record &account, const ValueRange &range) {
  AccountValues total;
  auto add = [&](int debitKind, int creditKind, int debit, int credit) {
    total.debit += hundredths(GetSaldozeiger(account, debitKind, kOwnCurrency, debit));
    total.credit += hundredths(GetSaldozeiger(account, creditKind, kOwnCurrency, credit));
    total.euroDebit += hundredths(GetSaldozeiger(account, debitKind, kEuro, debit));
    total.euroCredit += hundredths(GetSaldozeiger(account, creditKind, kEuro, credit));
  };
  if (range.opening) add(kOpeningDebit, kOpeningCredit, 0, 0);
  if (range.closing) add(kClosingDebit, kClosingCredit, 0, 0);
  for (int month = range.first; month <= range.last; ++month)
    add(kMonthlyValue, kMonthlyValue, 2 * month - 2, 2 * month - 1);
  return total;
}

} // namespace

const char *GetSaldozeiger(const SACHKONTO &account, int kind, int currency, int index) {
  return valueOf(account, kind, currency, index);
}
const char *GetSaldozeiger(const PERSONENKONTO &account, int kind, int currency, int index) {
  return valueOf(account, kind, currency, index);
}
const char *GetSaldozeiger(const KOST &centre, int currency, int index) {
  return currency == kEuro ? centre.EuroKosten[index] : centre.Kosten[index];
}

AccountValues sumOfValues(int table, const DATENBANK &record, const ValueRange &range) {
  if (table == kSachkonto) return sum(record.Sachkonto, range);
  if (table != kKost) return sum(record.Personenkonto, range);
  AccountValues total;
  for (int month = range.first; month <= range.last; ++month) {
    total.debit += hundredths(GetSaldozeiger(record.Kost, kOwnCurrency, month - 1));
    total.euroDebit += hundredths(GetSaldozeiger(record.Kost, kEuro, month - 1));
  }
  return total;
}

AccountValues GetKontoMonatsWerte(Store &store, int table, const char *account, const DateRange &days) {
  constexpr int ofTheYear = 0;
  constexpr FileNumber byAccount = fileNumber(kBuchungsbeleg, 1);
  static const Table &entries = *findTable(kBuchungsbeleg);
  static const int fields[] = {entries.fieldIndex("Soll"), entries.fieldIndex("Haben"), entries.fieldIndex("EuroSoll"),
                               entries.fieldIndex("EuroHaben")};
  auto key = [&](const vlba98::Date &day) {
    return keyOf(byAccount, table, account, ofTheYear, vlba98::toReversed(day).data());
  };
  if (days.first > days.last) return {};
  int64_t sums[std::size(fields)];
  must(store.Sum(key(days.first), key(days.last), fields, sums, byAccount));
  return {sums[0], sums[1], sums[2], sums[3]};
}

} // namespace vlfn98
