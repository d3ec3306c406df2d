/// Where the books are, for the verbs that write below the exports.
#pragma once

#include <memory>
#include <string>

#include "store/store.h"

namespace zelkctl {

/// A setting as UTF-8; empty when it is missing.
std::string readSetting(const char *section, const char *key);

/// The program directory of the settings, with a separator at its end; empty when there is none.
std::string programDirectory();

/// A session in the database that the settings lead to; null, and complained of, when there is none.
std::unique_ptr<vldb98::Store> openBooks();

/// A session in the embedded database of the program directory, or in the server's that the settings name, whichever of
/// them is in use; null, and complained of, when it cannot be had.
/// \param create the embedded database may be made, and the tables that are missing
std::unique_ptr<vldb98::Store> openEnd(bool server, bool create);

} // namespace zelkctl
