#include "vlfn98/currency.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "store/typed.h"
#include "vlba98/money.h"
#include "vlba98/text.h"

using namespace vldb98;

namespace vlfn98 {
namespace {

constexpr size_t kDecimals = 6, kLeastDecimals = 2, kIntegerDigits = 9;
constexpr int64_t kMillion = 1'000'000;

} // namespace

std::optional<int64_t> parseRate(std::string_view text) {
  const size_t comma = std::min(text.find(vlba98::HoleDezimalTrenner()), text.size());
  std::string digits(text.substr(0, comma));
  if (digits.size() > kIntegerDigits || !vlba98::IsZahl(digits) || text.size() >= sizeof(KURSE::Kurs))
    return std::nullopt;
  if (comma < text.size()) {
    std::string_view decimals = text.substr(comma + 1);
    if (decimals.size() > kDecimals || !vlba98::IsZahl(decimals)) return std::nullopt;
    digits += decimals;
    digits.append(kDecimals - decimals.size(), '0');
  } else {
    digits.append(kDecimals, '0');
  }
  int64_t millionths = std::stoll(digits);
  return millionths > 0 ? std::optional(millionths) : std::nullopt;
}

void formatRate(int64_t millionths, char (&text)[13]) {
  std::string decimals = std::to_string(millionths % kMillion);
  decimals.insert(0, kDecimals - decimals.size(), '0');
  decimals.erase(std::max(kLeastDecimals, decimals.find_last_not_of('0') + 1));
  vlba98::strncpy2(text, std::to_string(millionths / kMillion) + vlba98::HoleDezimalTrenner() + decimals);
}

std::optional<ExchangeRate> findRate(Store &store, const char *currency, const char *reversedDate) {
  const auto stored = atMost<KURSE>(store, currency, reversedDate);
  if (!stored || std::strcmp(stored->Waehrung, currency) != 0) return std::nullopt;
  const auto millionths = parseRate(stored->Kurs);
  if (!millionths || stored->Einheiten < 1) throw StoreFailed(); // a damaged rate must not pass as none
  return ExchangeRate{*millionths, stored->Einheiten};
}

void storeRate(Store &store, const char *currency, const char *reversedDate, const ExchangeRate &rate) {
  const auto isStored = [&] { return exists<KURSE>(store, currency, reversedDate); };
  if (isStored()) return;
  DATENBANK record{};
  vlba98::strncpy2(record.Kurse.Waehrung, currency);
  vlba98::strncpy2(record.Kurse.Datum, reversedDate);
  formatRate(rate.millionths, record.Kurse.Kurs);
  record.Kurse.Einheiten = rate.units;
  // Where it is refused, somebody else may have stored one meanwhile.
  if (!store.Insert(record, kKurse)) must(isStored());
}

std::optional<int64_t> toOwnCurrency(int64_t foreign, const ExchangeRate &rate) {
  auto own = vlba98::mulDiv(foreign, rate.millionths, rate.units * kMillion, vlba98::Rounding::halfAwayFromZero);
  if (!own || *own < -vlba98::maxMoney || *own > vlba98::maxMoney) return std::nullopt;
  return own;
}

} // namespace vlfn98
