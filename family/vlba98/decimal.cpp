#include "vlba98/decimal.h"

#include "vlba98/money.h"
#include "vlba98/text.h"

#include <stdexcept>
#include <string>

namespace vlba98 {
namespace {

constexpr std::int64_t perUnit = 10'000;

void refuseOverflow(bool overflow) {
  if (overflow) throw std::overflow_error("decimal: the amount exceeds 64 bits with four decimals");
}

} // namespace

decimal::decimal(std::string_view money) {
  const std::string_view text = trimmed(money);
  if (text.empty()) return;
  const auto hundredths = parseMoney(text);
  if (!hundredths) throw std::invalid_argument("decimal: not a money text: '" + std::string(money) + "'");
  currency_ = *hundredths * (perUnit / 100);
}

decimal::decimal(std::int64_t units) {
  refuseOverflow(__builtin_mul_overflow(units, perUnit, &currency_));
}

decimal &decimal::operator+=(const decimal &other) {
  std::int64_t sum;
  refuseOverflow(__builtin_add_overflow(currency_, other.currency_, &sum));
  currency_ = sum;
  return *this;
}

decimal &decimal::operator-=(const decimal &other) {
  std::int64_t difference;
  refuseOverflow(__builtin_sub_overflow(currency_, other.currency_, &difference));
  currency_ = difference;
  return *this;
}

decimal decimal::operator-() const {
  return decimal() - *this;
}

double decimal::get_double() const {
  return static_cast<double>(currency_) / static_cast<double>(perUnit);
}

decimal::parts decimal::get__decimal() const {
  const auto bits = static_cast<std::uint64_t>(currency_);
  const bool negative = currency_ < 0;
  const std::uint64_t magnitude = negative ? 0 - bits : bits;
  return {static_cast<std::uint32_t>(magnitude), static_cast<std::uint32_t>(magnitude >> 32), 0, 4, negative};
}

} // namespace vlba98
