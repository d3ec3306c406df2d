/// The posting that a thread builds piece by piece.
#pragma once

#include "frame/context.h"
#include "postings/posting.h"

namespace postings {

/// A posting that is not finished, and what decides whether its pieces go together.
struct Construction {
  Construction() { posting.inPieces = true; }

  Posting posting;
  bool started = false;
  bool swissRules = false; ///< the client's books were found to be kept under the rules of Switzerland
  int plainAdditions = 0, exAdditions = 0;

  int linesWithOwnAmounts() const;

  /// Another posting of the thread, which is handed over whole, takes with it what came with the lines so far; the
  /// lines and their cost postings stay.
  void forgetExtras();
};

/// The calling thread's construction.
Construction &constructionOf(frame::ThreadContext &context);

} // namespace postings
