/// The values that the ledger keeps of an account, and what the entries of single days add up to. Amounts in
/// hundredths.
#pragma once

#include <cstdint>

#include "store/store.h"
#include "vlfn98/currency.h"
#include "vlfn98/fiscal_year.h"

namespace vlfn98 {

/// Kinds of the values that the ledger keeps of an account.
enum ValueKind : int {
  kOpeningCredit = 1,
  kOpeningDebit = 2,
  kClosingCredit = 3,
  kClosingDebit = 4,
  kMonthlyValue = 5, ///< by month index
};

/// The money text of one value.
/// \param currency kOwnCurrency or kEuro
/// \param index    of a monthly value: 2 m - 2 the debit and 2 m - 1 the credit of month m; of a cost centre, which has
///                 monthly values only and no sides: m - 1
const char *GetSaldozeiger(const vldb98::SACHKONTO &account, int kind, int currency, int index);
const char *GetSaldozeiger(const vldb98::PERSONENKONTO &account, int kind, int currency, int index);
const char *GetSaldozeiger(const vldb98::KOST &centre, int currency, int index);

/// Debit and credit in both currencies. Costs of a cost centre count as debit.
struct AccountValues {
  int64_t debit = 0, credit = 0, euroDebit = 0, euroCredit = 0;

  AccountValues &operator+=(const AccountValues &other) {
    debit += other.debit;
    credit += other.credit;
    euroDebit += other.euroDebit;
    euroCredit += other.euroCredit;
    return *this;
  }
  int64_t balance() const { return debit - credit; }
  int64_t euroBalance() const { return euroDebit - euroCredit; }
};

/// Which of an account's values count: months first to last (none where first is greater), opening and closing values.
struct ValueRange {
  int first = 1, last = 0;
  bool opening = false, closing = false;
};

/// \param table 0, 2, 3 or 16 (a cost centre has no opening and closing values)
AccountValues sumOfValues(int table, const vldb98::DATENBANK &record, const ValueRange &range);

/// What the posted entries of an account of the open fiscal year come to on some days, opening and closing entries
/// excepted. \param table 0, 2 or 3
AccountValues GetKontoMonatsWerte(vldb98::Store &store, int table, const char *account, const DateRange &days);

} // namespace vlfn98
