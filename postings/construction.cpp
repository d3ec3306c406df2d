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
  if (!context.construction) context.construction = std::make_shared<Construction>();
  return *context.construction;
}

} // namespace postings
