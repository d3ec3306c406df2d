/// The checks of a single line that need no reckoning.
#pragma once

#include "postings/in_progress.h"

namespace postings {

/// Runs them in their order: accounts, form of the amounts, cost template. Fills the accounts found and the amounts.
Refusal checkLine(PostingInProgress &posting, LineInProgress &line);

} // namespace postings
