/// What must hold in a client folder beyond the form of its values.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "store/store.h"

namespace zelkctl {

/// What the field of a table names must be a key of another table; empty and 0 name nothing.
struct Reference {
  int table;
  const char *field;
  int target;
  int dimension = -1; ///< of the cost centre that is meant; -1: of any
};
std::span<const Reference> references();

/// What is wrong with a row, in German, one sentence each.
std::vector<std::string> brokenRules(int table, const vldb98::DATENBANK &row);

/// Whether a unique key of the row is in use, of the open client and fiscal year; nothing when the store failed.
std::optional<bool> keyInUse(vldb98::Store &store, const vldb98::Table &table, const vldb98::DATENBANK &row);

} // namespace zelkctl
