/// Report structures as a client folder has them: lines that name their parents.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "records/records.h"

namespace zelkctl {

struct StructureProblem {
  size_t line; ///< index of the line; one after the last: of the structure as a whole
  std::string text;
};

/// Links the lines of a structure, each to its first child and its next sibling, in the order in which they stand.
/// \return what keeps lines from being reached, German; empty when every line is
std::vector<StructureProblem> linkStructure(std::span<vldb98::AUFBAU *const> lines);

} // namespace zelkctl
