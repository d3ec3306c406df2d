/// Posted cost postings: which cost centres they name, and what they come to.
#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>

#include "vlfn98/balances.h"

namespace vlfn98 {

/// Mark of a cost posting in KOSTENBELEG.Flags, beside its kind of costs: it stands in credit and lessens them.
constexpr int16_t kLessensCosts = 32;

/// Whether the open client uses cost references: some cost centre of the open fiscal year has one.
bool IsKostrefActive(vldb98::Store &store);

/// Which cost postings count. Numbers without blanks.
struct CostSelection {
  std::string costType;                             ///< general-ledger account; empty: all
  std::optional<std::set<std::string>> costCentres; ///< nothing: all
  std::optional<std::string> reference;             ///< of the cost centres; nothing: any
  int32_t dimension = 0; ///< in which the cost centre is named, 0 to 5; any other value: in whichever
};

/// What the cost postings of some days of the open fiscal year come to: costs, less what lessens them, as debit.
AccountValues sumOfCosts(vldb98::Store &store, const DateRange &days, const CostSelection &selection);

/// The same of the cost postings that have moved the costs of a cost centre.
AccountValues costsOfCentre(vldb98::Store &store, const vldb98::KOST &centre, const DateRange &days);

} // namespace vlfn98
