/// How the posting of a batch gives up.
#pragma once

#include <string>

namespace ledger {

/// Thrown: a posting cannot be posted. The batch is then posted not at all.
struct Refusal {
  std::string text; ///< UTF-8
};

/// Thrown: the record store failed.
struct StoreFailed {};

inline void must(int done) {
  if (!done) throw StoreFailed();
}

} // namespace ledger
