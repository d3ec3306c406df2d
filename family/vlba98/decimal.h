/// The fixed-point amount in which sums are formed.
#pragma once

#include <compare>
#include <concepts>
#include <cstdint>
#include <string_view>

namespace vlba98 {

/// An amount with exactly four decimals on a 64-bit integer: the scale of the platform's CY type,
/// ±922337203685477,5807. That holds the sum of 900,000 amounts of the greatest size. Arithmetic beyond it throws
/// std::overflow_error.
class decimal {
public:
  /// The platform's DECIMAL as plain fields: (-1 if negative) * (hi * 2^64 + mid * 2^32 + lo) / 10^scale.
  struct parts {
    std::uint32_t lo, mid, hi;
    std::uint8_t scale; ///< always 4
    bool negative;      ///< never set for zero
    bool operator==(const parts &) const = default;
  };

  constexpr decimal() = default;

  /// From a money text in internal form (see money.h); an empty or blank text is zero.
  /// \throws std::invalid_argument for any other text: a damaged amount must not pass as zero
  explicit decimal(std::string_view money);

  /// From whole currency units: decimal(12) is 12,0000. \throws std::overflow_error beyond ±922337203685477
  explicit decimal(std::int64_t units);

  /// No floating point touches an amount.
  template <std::floating_point T> explicit decimal(T) = delete;

  decimal &operator+=(const decimal &other);
  decimal &operator-=(const decimal &other);
  friend decimal operator-(decimal left, const decimal &right) { return left -= right; }
  decimal operator-() const;
  auto operator<=>(const decimal &) const = default;

  bool is_null() const { return currency_ == 0; }
  void swap_sign() { *this = -*this; }

  /// For display and graphics only.
  double get_double() const;
  parts get__decimal() const;
  /// The value as a currency integer: four implied decimals, 1,5 is 15000.
  std::int64_t get_i64currency() const { return currency_; }
  void set_i64currency(std::int64_t currency) { currency_ = currency; }

private:
  std::int64_t currency_ = 0;
};

} // namespace vlba98
