#include "vlfn98/currency.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "vlba98/geld.h"
#include "vlba98/text.h"

using namespace vldb98;

namespace vlfn98 {
namespace {

constexpr size_t kDecimals = 6, kLeastDecimals = 2, kIntegerDigits = 9;
constexpr int64_t kMillion = 1'000'000;

SCHLUESSEL keyOf(const char *currency, const char *reversedDate) {
  return KeyBuilder().text(currency, sizeof(KURSE::Waehrung) - 1).text(reversedDate, sizeof(KURSE::Datum) - 1);
}

} // namespace

std::optional<int64_t> parseKurs(std::string_view text) {
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

void formatKurs(int64_t millionths, char (&text)[13]) {
  std::string decimals = std::to_string(millionths % kMillion);
  decimals.insert(0, kDecimals - decimals.size(), '0');
  decimals.erase(std::max(kLeastDecimals, decimals.find_last_not_of('0') + 1));
  vlba98::strncpy2(text, std::to_string(millionths / kMillion) + vlba98::HoleDezimalTrenner() + decimals);
}

int HoleKurs(Store &store, const char *currency, const char *reversedDate, Wechselkurs &rate, uint8_t &found) {
  DATENBANK record{};
  uint8_t there = 0;
  found = 0;
  if (!store.GetLeExt(record, keyOf(currency, reversedDate), there, kKurse)) return 0;
  if (!there || std::strcmp(record.Kurse.Waehrung, currency) != 0) return 1;
  auto millionths = parseKurs(record.Kurse.Kurs);
  if (!millionths || record.Kurse.Einheiten < 1) return 0; // a damaged rate must not pass as none
  rate = {*millionths, record.Kurse.Einheiten};
  found = 1;
  return 1;
}

int SpeichereKurs(Store &store, const char *currency, const char *reversedDate, const Wechselkurs &rate) {
  const SCHLUESSEL key = keyOf(currency, reversedDate);
  uint8_t there = 0;
  if (!store.Used(key, there, kKurse)) return 0;
  if (there) return 1;
  DATENBANK record{};
  vlba98::strncpy2(record.Kurse.Waehrung, currency);
  vlba98::strncpy2(record.Kurse.Datum, reversedDate);
  formatKurs(rate.millionths, record.Kurse.Kurs);
  record.Kurse.Einheiten = rate.units;
  if (store.Insert(record, kKurse)) return 1;
  // Somebody else may have stored one meanwhile.
  return store.Used(key, there, kKurse) && there;
}

std::optional<int64_t> toOwnCurrency(int64_t foreign, const Wechselkurs &rate) {
  auto own = vlba98::mulDiv(foreign, rate.millionths, rate.units * kMillion, vlba98::Rounding::halfAwayFromZero);
  if (!own || *own < -vlba98::maxGeld || *own > vlba98::maxGeld) return std::nullopt;
  return own;
}

} // namespace vlfn98
