/// Cost accounting: cost centres, cost templates, allowed combinations.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "store/store.h"

namespace vlfn98 {

/// Cost-accounting dimensions, from 0.
constexpr int kDimensions = 6;

/// Cost centres that one cost posting can name.
constexpr int kCentresPerPosting = 6;

/// The dimension in which the n-th cost centre of a cost posting (from 0) is looked up: 0 cost centre, 1 cost unit,
/// the others as the client assigns them.
int costDimension(const vldb98::FISTA_EXT &client, int n);

/// The cost centre of a number in a dimension, of the open fiscal year.
std::optional<vldb98::KOST> IsKostenstelle(vldb98::Store &store, const char *number, int dimension);

/// Whether a day (reversed) lies in the running time of a cost centre.
bool IsKostDateValid(const vldb98::KOST &centre, const char *reversedDate);

/// 0 none, 1 fixed costs, 2 variable costs.
constexpr bool isCostKind(int32_t value) {
  return value >= 0 && value <= 2;
}

/// Whether a cost type and a cost centre go together.
bool CheckKomb(vldb98::Store &store, const char *costType, const char *centre);

/// Whether the open client has a cost template of the number.
bool IsKoscha(vldb98::Store &store, int32_t number);

/// The shares of a cost template in their order; none when there is no such template.
std::vector<vldb98::KOSCHA_ZEILE> sharesOfTemplate(vldb98::Store &store, int32_t number);

/// Distributes an amount by weights. The parts add up to the amount exactly: each is the rounded share of the amount up
/// to its place, less what went before. Weights below zero count as zero; without any weight the first takes all.
/// \param parts as many as weights
void distribute(int64_t amount, std::span<const int64_t> weights, std::span<int64_t> parts);

/// Which account of a posting bears costs.
enum class CostSide { None, Debit, Credit, Both };

/// \param debit,credit general-ledger accounts of the posting; null: a personal account
/// \param mandatory    the client demands cost centres: then every income-statement account bears costs
CostSide BestimmeKostenseite(const vldb98::SACHKONTO *debit, const vldb98::SACHKONTO *credit, bool mandatory);

} // namespace vlfn98
