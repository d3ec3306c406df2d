/// Lines of report structures.
#pragma once

#include <cstdint>

namespace vlfn98 {

/// Marks of a line in AUFBAU.Flags: what its name is, in the bits of the mask, and whether reports leave it out.
constexpr int32_t kKindMask = 3;
constexpr int32_t kAccountLine = 1, kHidden = 4;

/// Mark in AUFBAU.Flags2: the second identifier holds.
constexpr int32_t kSecondHolds = 4;

/// Added to the class of a structure in a call: its hidden lines, too.
constexpr int32_t kHiddenToo = 32768;

} // namespace vlfn98
