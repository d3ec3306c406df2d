/// Chance for tests that go through many amounts.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <random>

namespace test {

/// A generator with a new seed per run. The seed is printed; ZELK_TEST_SEED repeats a run.
inline std::mt19937_64 generator() {
  const char *fixed = std::getenv("ZELK_TEST_SEED");
  const std::uint64_t seed = fixed ? std::strtoull(fixed, nullptr, 10) : std::random_device{}();
  std::cout << "ZELK_TEST_SEED=" << seed << std::endl;
  return std::mt19937_64(seed);
}

/// Values of every magnitude up to the limit, both signs.
inline std::int64_t anyMagnitude(std::mt19937_64 &random, std::int64_t limit) {
  const auto value = static_cast<std::int64_t>(random() >> (1 + random() % 63)) % limit;
  return random() % 2 ? value : -value;
}

} // namespace test
