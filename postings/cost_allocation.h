/// The cost postings of a line: those that were handed over, or those of a cost template.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "postings/in_progress.h"
#include "vlfn98/costs.h"

namespace postings {

class CostAllocation {
public:
  explicit CostAllocation(PostingInProgress &posting) : posting_(posting) {}

  /// Checks and distributes the costs of a line whose amounts are reckoned, and adds them to the posting in the store's
  /// memory. The lines come in their order.
  Refusal allocate(const LineInProgress &line);

private:
  /// Cost postings of a line on their way. Amounts in the currency of the posting.
  struct Costs {
    std::vector<vldb98::KOBU> entries;
    std::vector<int64_t> amounts;
  };

  Refusal allocateGiven(const LineInProgress &line, vlfn98::CostSide side, Costs &costs);
  Refusal takeGiven(const LineInProgress &line, const PostingCost &given, vldb98::KOBU &cost, int64_t &amount);
  Refusal allocateByTemplate(const LineInProgress &line, vlfn98::CostSide side, Costs &costs);
  int32_t templateOf(const LineInProgress &line, vlfn98::CostSide side);
  Refusal checkCentres(const vldb98::KOBU &cost);
  Refusal checkCombinations(const LineInProgress &line, vlfn98::CostSide side, const vldb98::KOBU &cost);
  Refusal store(const LineInProgress &line, Costs &costs);

  PostingInProgress &posting_;
  std::optional<std::string> unit_; // of the cost postings so far
};

} // namespace postings
