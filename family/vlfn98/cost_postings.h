/// Posted cost postings: which cost centres they name, and what they come to.
#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>

#include "vlfn98/balances.h"

namespace vlfn98 {

/// Whether the open client uses cost references: some cost centre of the open fiscal year has one.
/// \return 0 when the store failed
int IsKostrefActive(vldb98::Store &store, uint8_t &active);

/// Which cost postings count. Numbers without blanks.
struct Kostenauswahl {
  std::string costType;                             ///< general-ledger account; empty: all
  std::optional<std::set<std::string>> costCentres; ///< nothing: all
  int32_t dimension = 0; ///< in which the cost centre is named, 0 to 5; any other value: in whichever
};

/// What the cost postings of some days of the open fiscal year come to: costs, less what lessens them, as debit.
/// \return 0 when the store failed
int SummeDerKostenbuchungen(vldb98::Store &store, const Zeitspanne &days, const Kostenauswahl &selection,
                            Werte &values);

/// The same of the cost postings that name a cost centre. They name it by its number: where cost centres of a dimension
/// differ in their reference only, postings belong to the first of them.
/// \return 0 when the store failed
int GetKostMonatsWerte(vldb98::Store &store, const vldb98::KOST &centre, const Zeitspanne &days, Werte &values);

} // namespace vlfn98
