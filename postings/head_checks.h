/// The checks that a posting goes through as a whole, before its lines are looked at one by one.
#pragma once

#include "postings/in_progress.h"

namespace postings {

/// Runs them in their order: batch, dates, number and shape of the lines, payment term, currency, accounts of the first
/// line, document number. Fills the lines, and what the posting stores once.
Refusal checkHead(PostingInProgress &posting);

} // namespace postings
