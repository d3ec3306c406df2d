/// What an insertion will look up, told to a server beforehand: in few steps what the checks read piece by piece. A
/// look-up that is missing here costs a step, and nothing else. On the embedded database these do nothing.
#pragma once

#include <vector>

#include "postings/in_progress.h"
#include "vlfn98/costs.h"

namespace postings {

/// What the posting itself names.
void tellLookUps(PostingInProgress &posting);

/// What its accounts lead to.
void tellLookUpsOfAccounts(PostingInProgress &posting);

/// What the shares of a cost template do.
void tellLookUpsOfShares(PostingInProgress &posting, const LineInProgress &line, vlfn98::CostSide side,
                         const std::vector<vldb98::KOSCHA_ZEILE> &shares);

} // namespace postings
