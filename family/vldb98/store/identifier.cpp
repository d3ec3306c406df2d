#include "store/identifier.h"

#include <array>
#include <chrono>
#include <cstdint>

namespace vldb98 {
namespace {

std::mt19937_64 seeded() {
  std::random_device system;
  std::array<std::random_device::result_type, 8> words;
  for (auto &word : words)
    word = system();
  std::seed_seq sequence(words.begin(), words.end());
  return std::mt19937_64(sequence);
}

void digits(uint64_t value, char *at) {
  for (int i = 15; i >= 0; --i, value >>= 4)
    at[i] = "0123456789abcdef"[value & 15];
}

} // namespace

IdentifierSource::IdentifierSource() : random_(seeded()) {}

void IdentifierSource::make(char (&identifier)[kDigits + 1]) {
  constexpr uint64_t version = 7, variant = 2;
  using std::chrono::duration_cast, std::chrono::milliseconds, std::chrono::system_clock;
  const auto now = uint64_t(duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count());
  digits(now << 16 | version << 12 | (random_() & 0xFFF), identifier);
  digits(variant << 62 | random_() >> 2, identifier + 16);
  identifier[kDigits] = 0;
}

int32_t IdentifierSource::anyNumber() {
  return std::uniform_int_distribution<int32_t>(1, INT32_MAX)(random_);
}

} // namespace vldb98
