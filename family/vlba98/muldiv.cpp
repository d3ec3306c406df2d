#include "vlba98/muldiv.h"

#include <limits>

namespace vlba98 {
namespace {

struct Unsigned128 {
  std::uint64_t high, low;
};

std::uint64_t magnitude(std::int64_t value) {
  const auto bits = static_cast<std::uint64_t>(value);
  return value < 0 ? 0 - bits : bits;
}

Unsigned128 multiply(std::uint64_t a, std::uint64_t b) {
  const std::uint64_t mask = 0xffffffff;
  const std::uint64_t aLow = a & mask, aHigh = a >> 32, bLow = b & mask, bHigh = b >> 32;
  const std::uint64_t low = aLow * bLow;
  // Neither sum can carry out of 64 bits: (2^32 - 1)^2 + 2 * (2^32 - 1) = 2^64 - 1.
  const std::uint64_t middle = aHigh * bLow + (low >> 32);
  const std::uint64_t middle2 = aLow * bHigh + (middle & mask);
  return {aHigh * bHigh + (middle >> 32) + (middle2 >> 32), (middle2 << 32) | (low & mask)};
}

struct Division {
  std::uint64_t quotient, remainder;
};

/// Requires dividend.high < divisor <= 2^63, so that the quotient fits and the remainder can be doubled.
Division divide(Unsigned128 dividend, std::uint64_t divisor) {
  if (dividend.high == 0) return {dividend.low / divisor, dividend.low % divisor};
  std::uint64_t remainder = dividend.high, quotient = 0;
  for (int bit = 63; bit >= 0; --bit) {
    remainder = (remainder << 1) | ((dividend.low >> bit) & 1);
    quotient <<= 1;
    if (remainder >= divisor) {
      remainder -= divisor;
      quotient |= 1;
    }
  }
  return {quotient, remainder};
}

} // namespace

std::optional<std::int64_t> mulDiv(std::int64_t a, std::int64_t b, std::int64_t c, Rounding rounding) {
  const Unsigned128 product = multiply(magnitude(a), magnitude(b));
  const std::uint64_t divisor = magnitude(c);
  if (product.high >= divisor) return std::nullopt; // division by zero included

  auto [quotient, remainder] = divide(product, divisor);
  if (rounding == Rounding::halfAwayFromZero && remainder >= divisor - remainder) {
    if (++quotient == 0) return std::nullopt;
  }
  const bool negative = ((a < 0) != (b < 0)) != (c < 0);
  const auto greatest = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
  if (quotient > greatest + (negative ? 1 : 0)) return std::nullopt;
  return static_cast<std::int64_t>(negative ? 0 - quotient : quotient);
}

} // namespace vlba98
