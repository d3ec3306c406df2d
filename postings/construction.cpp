#include "postings/construction.h"

#include <algorithm>

namespace postings {

void Construction::forgetExtras() {
  plainAdditions = exAdditions = 0;
  for (PostingLine &line : posting.lines) {
    line.own.reset();
    line.movementKind = line.document = 0;
  }
}

int Construction::linesWithOwnAmounts() const {
  return int(std::count_if(posting.lines.begin(), posting.lines.end(),
                           [](const PostingLine &line) { return line.own.has_value(); }));
}

Construction &constructionOf(frame::ThreadContext &context) {
  return context.slot<Construction>();
}

} // namespace postings
