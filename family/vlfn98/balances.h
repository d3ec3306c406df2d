/// The values that the ledger keeps of an account, and what the entries of single days add up to. Amounts in
/// hundredths.
#pragma once

#include <cstdint>

#include "store/store.h"
#include "vlfn98/fiscal_year.h"

namespace vlfn98 {

/// Kinds of the values that the ledger keeps of an account.
enum Wertart : int {
  kEroeffnungHaben = 1,
  kEroeffnungSoll = 2,
  kAbschlussHaben = 3,
  kAbschlussSoll = 4,
  kMonatswert = 5, ///< by month index
};

/// Currency indexes of values.
constexpr int kEigeneWaehrung = 0, kEurowert = -1;

/// The money text of one value.
/// \param currency 0 the client's currency, -1 Euro
/// \param index    of a monthly value: 2 m - 2 the debit and 2 m - 1 the credit of month m; of a cost centre, which has
///                 monthly values only and no sides: m - 1
const char *GetSaldozeiger(const vldb98::SACHKONTO &account, int kind, int currency, int index);
const char *GetSaldozeiger(const vldb98::PERSONENKONTO &account, int kind, int currency, int index);
const char *GetSaldozeiger(const vldb98::KOST &centre, int currency, int index);

/// Debit and credit in both currencies. Costs of a cost centre count as debit.
struct Werte {
  int64_t soll = 0, haben = 0, euroSoll = 0, euroHaben = 0;

  Werte &operator+=(const Werte &other) {
    soll += other.soll;
    haben += other.haben;
    euroSoll += other.euroSoll;
    euroHaben += other.euroHaben;
    return *this;
  }
  int64_t saldo() const { return soll - haben; }
  int64_t euroSaldo() const { return euroSoll - euroHaben; }
};

/// Which of an account's values count: months first to last (none where first is greater), opening and closing values.
struct Wertebereich {
  int first = 1, last = 0;
  bool opening = false, closing = false;
};

/// \param table 0, 2, 3 or 16 (a cost centre has no opening and closing values)
Werte summeDerWerte(int table, const vldb98::DATENBANK &record, const Wertebereich &range);

/// What the posted entries of an account of the open fiscal year come to on some days, opening and closing entries
/// excepted. \param table 0, 2 or 3
Werte GetKontoMonatsWerte(vldb98::Store &store, int table, const char *account, const Zeitspanne &days);

} // namespace vlfn98
