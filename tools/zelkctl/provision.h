/// Where the books are, for the verbs that write below the exports.
#pragma once

#include <memory>

#include "vldb98/store.h"

namespace zelkctl {

/// A session in the database that the settings lead to; null, and complained of, when there is none.
std::unique_ptr<vldb98::Store> openBooks();

} // namespace zelkctl
