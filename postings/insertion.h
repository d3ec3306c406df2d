/// One run of the checks over one posting, into its batch.
#pragma once

#include "postings/amounts.h"
#include "postings/cost_allocation.h"
#include "postings/in_progress.h"

namespace postings {

/// The client is open and the tables are locked. What the store fails with is thrown; then, too, the batch is as it
/// was.
class Insertion {
public:
  Insertion(vldb98::Store &store, const Posting &posting)
      : posting_(store, posting), amounts_(posting_), costs_(posting_) {}

  /// Runs the checks in their order and stores the posting. \return why not; then the batch is as it was
  Refusal run();

  /// The posting that run has stored; its lines are in the store's memory.
  const vldb98::BATCHBUCHUNG &stored() const { return posting_.stored; }

  /// The rate for want of which run refused with -65.
  const MissingRate &missingRate() const { return amounts_.missingRate(); }

private:
  Refusal check();
  void addLine(const LineInProgress &line);

  PostingInProgress posting_;
  AmountReckoning amounts_;
  CostAllocation costs_;
};

} // namespace postings
