#include "postings/construction.h"

namespace postings {

void Construction::resetExtras() {
  plainAdditions = exAdditions = 0;
  ownAmounts.clear();
  movementKinds.clear();
  documents.clear();
}

void Construction::clear() {
  resetExtras();
  posting = {};
  std::vector<ZELK_TEILBUCHUNG>().swap(overflow);
  std::vector<CostEntry>().swap(costs);
  started = swissRules = false;
}

Construction &constructionOf(frame::ThreadContext &context) {
  return context.slot<Construction>();
}

} // namespace postings
