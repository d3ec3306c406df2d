/// How the posting of a batch gives up.
#pragma once

#include <string>

#include "store/typed.h"

namespace ledger {

/// Thrown: a posting cannot be posted. The batch is then posted not at all.
struct Refusal {
  std::string text; ///< UTF-8
};

using vldb98::must;
using vldb98::StoreFailed;

} // namespace ledger
