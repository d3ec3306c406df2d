#include "vlba98/money.h"

#include "vlba98/text.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace vlba98 {
namespace {

constexpr std::size_t minWidth = 4; ///< one integer digit, separator, two decimals
constexpr std::int64_t hundredPercent = 100'00;

std::optional<std::int64_t> withinRange(std::optional<std::int64_t> value) {
  return value && *value >= -maxMoney && *value <= maxMoney ? value : std::nullopt;
}

std::optional<std::int64_t> operand(const char *text) {
  const std::string_view value = trimmed(text ? text : "");
  return value.empty() ? 0 : parseMoney(value);
}

template <typename Operation> bool combine(char *result, const char *a, const char *b, Operation operation) {
  const auto left = operand(a), right = operand(b);
  if (!left || !right) return false;
  const std::optional<std::int64_t> value = operation(*left, *right);
  return value && formatMoney(*value, result);
}

/// Reads an amount in one of the notations of IsGeld. `at` ends on the first character that is not taken.
std::optional<std::int64_t> readAmount(const char *&at, std::size_t integerDigits) {
  char sign = *at == '+' || *at == '-' ? *at++ : '\0';
  std::int64_t value = 0;
  const auto takeDigit = [&] {
    if (!IsZiffer(*at)) return false;
    value = value * 10 + (*at++ - '0');
    return true;
  };

  std::size_t taken = 0;
  const auto takeIntegerDigit = [&] { return taken < integerDigits && takeDigit() && ++taken > 0; };
  while (takeIntegerDigit())
    continue;
  if (taken == 0) return std::nullopt;
  const bool grouped = *at == HoleTausenderTrenner() && taken <= 3;
  while (grouped && *at == HoleTausenderTrenner()) {
    ++at;
    for (int i = 0; i < 3; ++i)
      if (!takeIntegerDigit()) return std::nullopt;
  }

  const bool internalMinus = *at == '-' && IsZiffer(at[1]) && !sign && !grouped && taken == integerDigits;
  int decimals = 0;
  if (*at == HoleDezimalTrenner() || internalMinus) {
    ++at;
    while (decimals < 2 && takeDigit())
      ++decimals;
    if (decimals < (internalMinus ? 2 : 1)) return std::nullopt;
  }
  for (; decimals < 2; ++decimals)
    value *= 10;

  if (internalMinus) sign = '-';
  if (!sign && *at == '-') sign = *at++;
  return sign == '-' ? -value : value;
}

void putPair(char *out, std::uint32_t below100) {
  static constexpr auto pairs = [] {
    std::array<char, 200> digits{};
    for (std::size_t i = 0; i < 100; ++i) {
      digits[2 * i] = static_cast<char>('0' + i / 10);
      digits[2 * i + 1] = static_cast<char>('0' + i % 10);
    }
    return digits;
  }();
  std::memcpy(out, &pairs[2 * below100], 2);
}

/// Nine digits, separator, two digits: what every amount in the books is. Eight of the digits are taken together, as
/// one number of eight bytes, the first digit in the lowest.
std::optional<std::int64_t> parseWhole(const char *text) {
  std::uint64_t eight;
  std::memcpy(&eight, text + 1, sizeof eight);
  eight -= 0x3030303030303030;
  const unsigned first = static_cast<unsigned char>(text[0]) - unsigned{'0'},
                 tens = static_cast<unsigned char>(text[10]) - unsigned{'0'},
                 ones = static_cast<unsigned char>(text[11]) - unsigned{'0'};
  const bool digits = (((eight + 0x7676767676767676) | eight) & 0x8080808080808080) == 0;
  if (!digits || first > 9 || tens > 9 || ones > 9 || (text[9] != ',' && text[9] != '-')) return std::nullopt;
  // Pairs of digits, then pairs of pairs, then all.
  eight = (eight * 10 + (eight >> 8)) & 0x00FF00FF00FF00FF;
  eight = (eight * 100 + (eight >> 16)) & 0x0000FFFF0000FFFF;
  const std::uint64_t units = (eight * 10000 + (eight >> 32)) & 0xFFFFFFFF;
  const auto value = static_cast<std::int64_t>((first * std::uint64_t{100'000'000} + units) * 100 + tens * 10 + ones);
  return text[9] == '-' ? -value : value;
}

} // namespace

std::optional<std::int64_t> parseMoney(std::string_view internalForm) {
  if (internalForm.size() == moneyWidth) return parseWhole(internalForm.data());
  if (internalForm.size() < minWidth || internalForm.size() > moneyWidth) return std::nullopt;
  const std::size_t separatorAt = internalForm.size() - 3;
  bool digitsOnly = true;
  const auto digit = [&](std::size_t at) {
    const unsigned value = static_cast<unsigned char>(internalForm[at]) - static_cast<unsigned>('0');
    digitsOnly &= value <= 9;
    return value;
  };

  std::uint32_t units = 0; // nine digits fit into 32 bits
  for (std::size_t at = 0; at < separatorAt; ++at)
    units = units * 10 + digit(at);
  const std::uint32_t cents = digit(separatorAt + 1) * 10 + digit(separatorAt + 2);
  const char separator = internalForm[separatorAt];
  if (!digitsOnly || (separator != ',' && separator != '-')) return std::nullopt;
  const std::int64_t value = std::int64_t{units} * 100 + cents;
  return separator == '-' ? -value : value;
}

bool formatMoney(std::int64_t hundredths, char *out, std::size_t width) {
  static constexpr std::uint32_t powersOfTen[] = {1,       10,        100,        1'000,       10'000,
                                                  100'000, 1'000'000, 10'000'000, 100'000'000, 1'000'000'000};
  if (width < minWidth || width > moneyWidth || hundredths < -maxMoney || hundredths > maxMoney) return false;
  const auto magnitude = static_cast<std::uint64_t>(hundredths < 0 ? -hundredths : hundredths);
  auto units = static_cast<std::uint32_t>(magnitude / 100);
  // Not magnitude % 100: a second 64-bit division, which 32-bit machines do in software.
  const auto cents = static_cast<std::uint32_t>(magnitude - std::uint64_t{units} * 100);
  const std::size_t separatorAt = width - 3;
  if (units >= powersOfTen[separatorAt]) return false;

  // Two digits at a time, from the last on.
  std::size_t at = separatorAt;
  for (; at >= 2; units /= 100)
    putPair(out + (at -= 2), units % 100);
  if (at == 1) out[0] = static_cast<char>('0' + units);
  out[separatorAt] = hundredths < 0 ? '-' : ',';
  putPair(out + separatorAt + 1, cents);
  out[width] = '\0';
  return true;
}

bool formatMoney(std::int64_t hundredths, char out[moneyWidth + 1]) {
  return formatMoney(hundredths, out, moneyWidth);
}

std::optional<std::int64_t> netOfGross(std::int64_t gross, std::int64_t rate) {
  return withinRange(mulDiv(gross, hundredPercent, hundredPercent + rate, Rounding::halfAwayFromZero));
}

std::optional<std::int64_t> percentOf(std::int64_t net, std::int64_t rate) {
  return withinRange(mulDiv(net, rate, hundredPercent, Rounding::halfAwayFromZero));
}

std::int64_t roundToFive(std::int64_t hundredths) {
  return (hundredths + (hundredths < 0 ? -2 : 2)) / 5 * 5;
}

bool IsGeld(const char *text, int width, int allowEmpty, int allowNegative, char *normalised, const char **rest) {
  const char *at = text ? text : "";
  const auto refuse = [&](const char *where) {
    if (rest) *rest = where;
    return false;
  };
  if (width < static_cast<int>(minWidth) || width > static_cast<int>(moneyWidth)) return refuse(at);
  const auto skipBlanks = [&] {
    while (*at == ' ')
      ++at;
  };

  skipBlanks();
  std::int64_t value = 0;
  if (*at == '\0') {
    if (!allowEmpty) return refuse(at);
  } else {
    const char *start = at;
    const auto amount = readAmount(at, static_cast<std::size_t>(width) - 3);
    if (!amount) return refuse(*at != '\0' ? at : start);
    skipBlanks();
    if (*at != '\0') return refuse(at);
    if (*amount < 0 && !allowNegative) return refuse(start);
    value = *amount;
  }
  if (rest) *rest = "";
  return !normalised || formatMoney(value, normalised, static_cast<std::size_t>(width));
}

bool IsNull(const char *text) {
  const std::string_view value = trimmed(text ? text : "");
  return value.find_first_not_of('0') == std::string_view::npos || parseMoney(value) == 0;
}

bool GeldToCurrency(std::int64_t &currency, const char *text) {
  const auto value = operand(text);
  if (value) currency = *value * 100;
  return value.has_value();
}

bool CurrencyToGeld(char *text, std::int64_t currency) {
  const auto value = mulDiv(currency, 1, 100, Rounding::halfAwayFromZero);
  return value && formatMoney(*value, text);
}

bool MakeGeld(char *display, const char *text, int grouped) {
  const auto value = operand(text);
  if (!value) return false;
  auto magnitude = static_cast<std::uint64_t>(*value < 0 ? -*value : *value);
  std::array<char, moneyDisplaySize> backwards;
  std::size_t length = 0;
  const auto put = [&](char c) { backwards[length++] = c; };
  const auto putDigit = [&] {
    put(static_cast<char>('0' + magnitude % 10));
    magnitude /= 10;
  };

  putDigit();
  putDigit();
  put(HoleDezimalTrenner());
  putDigit();
  int digits = 1;
  while (magnitude > 0) {
    if (grouped && digits++ % 3 == 0) put(HoleTausenderTrenner());
    putDigit();
  }
  if (*value < 0) put('-');
  std::reverse_copy(backwards.begin(), backwards.begin() + static_cast<std::ptrdiff_t>(length), display);
  display[length] = '\0';
  return true;
}

bool MakeGeld(char *text, int grouped) {
  return MakeGeld(text, text, grouped);
}

double GeldToDouble(const char *text) {
  return static_cast<double>(operand(text).value_or(0)) / 100;
}

bool GeldIsGreater(const char *a, const char *b) {
  const auto left = operand(a), right = operand(b);
  return left && right && *left > *right;
}

bool add2(char *sum, const char *summand) {
  return combine(sum, sum, summand, [](std::int64_t a, std::int64_t b) { return a + b; });
}

bool sub(char *result, const char *a, const char *b) {
  return combine(result, a, b,
                 [](std::int64_t x, std::int64_t y) { return x < y ? std::nullopt : std::optional(x - y); });
}

bool subnegativ(char *result, const char *a, const char *b) {
  return combine(result, a, b, [](std::int64_t x, std::int64_t y) { return x - y; });
}

bool mul(char *result, const char *a, const char *b) {
  return combine(result, a, b,
                 [](std::int64_t x, std::int64_t y) { return mulDiv(x, y, 100, Rounding::halfAwayFromZero); });
}

bool div(char *result, const char *a, const char *b) {
  return combine(result, a, b,
                 [](std::int64_t x, std::int64_t y) { return mulDiv(x, 100, y, Rounding::halfAwayFromZero); });
}

bool proz(char *result, const char *gross, const char *percent) {
  return combine(result, gross, percent, netOfGross);
}

bool nettoproz(char *result, const char *net, const char *percent) {
  return combine(result, net, percent, percentOf);
}

bool RundeAuf5(char *text) {
  const auto value = operand(text);
  return value && formatMoney(roundToFive(*value), text);
}

} // namespace vlba98
