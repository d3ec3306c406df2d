/// Values of a CSV file.
#pragma once

#include <charconv>
#include <cstdint>
#include <limits>
#include <optional>
#include <string_view>

namespace zelkctl {

/// A whole number of a type's range, and nothing else in the text.
template <class Integer>
std::optional<Integer> wholeNumber(std::string_view text, Integer least = std::numeric_limits<Integer>::min(),
                                   Integer greatest = std::numeric_limits<Integer>::max()) {
  Integer number{};
  auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  bool whole = error == std::errc() && end == text.data() + text.size();
  return whole && number >= least && number <= greatest ? std::optional(number) : std::nullopt;
}

} // namespace zelkctl
