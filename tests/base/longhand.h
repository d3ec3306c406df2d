/// A second way to reckon, against which the exact arithmetic is checked: natural numbers as decimal digits, most
/// significant first, with the methods one uses on paper.
#pragma once

#include "vlba98/muldiv.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

namespace longhand {

inline std::string strip(const std::string &digits) {
  const auto first = digits.find_first_not_of('0');
  return first == std::string::npos ? "0" : digits.substr(first);
}

inline bool less(const std::string &a, const std::string &b) {
  return a.size() != b.size() ? a.size() < b.size() : a < b;
}

inline std::string times(const std::string &a, const std::string &b) {
  std::string product(a.size() + b.size(), '0');
  for (std::size_t i = a.size(); i-- > 0;) {
    int carry = 0;
    for (std::size_t j = b.size(); j-- > 0;) {
      const int sum = (a[i] - '0') * (b[j] - '0') + (product[i + j + 1] - '0') + carry;
      product[i + j + 1] = static_cast<char>('0' + sum % 10);
      carry = sum / 10;
    }
    product[i] = static_cast<char>(product[i] + carry);
  }
  return strip(product);
}

inline std::string successor(std::string digits) {
  digits.insert(0, "0");
  const auto last = digits.find_last_not_of('9');
  ++digits[last];
  std::fill(digits.begin() + static_cast<std::ptrdiff_t>(last) + 1, digits.end(), '0');
  return strip(digits);
}

/// a - b for a >= b.
inline std::string minus(std::string a, const std::string &b) {
  int borrow = 0;
  for (std::size_t i = 0; i < a.size(); ++i) {
    char &digit = a[a.size() - 1 - i];
    const int difference = digit - '0' - borrow - (i < b.size() ? b[b.size() - 1 - i] - '0' : 0);
    borrow = difference < 0;
    digit = static_cast<char>('0' + difference + 10 * borrow);
  }
  return strip(a);
}

inline std::string magnitude(std::int64_t value) {
  const std::string text = std::to_string(value);
  return value < 0 ? text.substr(1) : text;
}

/// a * b / c by long division on paper; empty for a zero divisor and results beyond 64 bits.
inline std::string mulDiv(std::int64_t a, std::int64_t b, std::int64_t c, vlba98::Rounding rounding) {
  if (c == 0) return "";
  const std::string dividend = times(magnitude(a), magnitude(b)), divisor = magnitude(c);
  std::string quotient, remainder = "0";
  for (const char digit : dividend) {
    remainder = strip(remainder + digit);
    char times0to9 = '0';
    for (; !less(remainder, divisor); ++times0to9)
      remainder = minus(remainder, divisor);
    quotient += times0to9;
  }
  quotient = strip(quotient);
  if (rounding == vlba98::Rounding::halfAwayFromZero && !less(times(remainder, "2"), divisor))
    quotient = successor(quotient);
  const bool negative = ((a < 0) != (b < 0)) != (c < 0) && quotient != "0";
  if (less(negative ? "9223372036854775808" : "9223372036854775807", quotient)) return "";
  return (negative ? "-" : "") + quotient;
}

} // namespace longhand
