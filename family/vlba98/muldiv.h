/// Exact multiplication and division of 64-bit integers, the core of all reckoning with amounts and rates.
#pragma once

#include <cstdint>
#include <optional>

namespace vlba98 {

/// What happens to the part of a quotient after the last place.
enum class Rounding {
  halfAwayFromZero, ///< commercial rounding: from one half on to the next greater magnitude (DIN 1333)
  towardZero,       ///< the remainder is dropped
};

/// a * b / c, exact over a 128-bit product and rounded once.
/// \return nothing when c is zero or the rounded quotient exceeds 64 bits
/// \par Source
/// Product: schoolbook multiplication on 32-bit digits (Knuth, The Art of Computer Programming, vol. 2, 4.3.1,
/// algorithm M). Quotient: restoring binary division, one bit per step.
std::optional<std::int64_t> mulDiv(std::int64_t a, std::int64_t b, std::int64_t c, Rounding rounding);

} // namespace vlba98
