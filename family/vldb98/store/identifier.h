/// Identifiers that no two postings share, whoever makes them where.
#pragma once

#include <cstddef>
#include <cstdint>
#include <random>

namespace vldb98 {

/// Makes identifiers for one session. It is seeded from the system, so that sessions of any processes differ, and costs
/// no look at the system afterwards.
class IdentifierSource {
public:
  static constexpr size_t kDigits = 32;

  IdentifierSource();

  /// Writes 32 hexadecimal digits in lower case and a terminator. They begin with the time, so that later postings lie
  /// after earlier ones in an index.
  /// \par Source
  /// UUID version 7 of RFC 9562, without its dashes.
  void make(char (&identifier)[kDigits + 1]);

  /// Any positive number.
  int32_t anyNumber();

private:
  std::mt19937_64 random_;
};

} // namespace vldb98
