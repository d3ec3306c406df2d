#include "vlfn98/tax.h"

#include <cstdlib>

#include "store/typed.h"
#include "vlba98/money.h"
#include "zelk98/zelk98.h"

using namespace vldb98;

namespace vlfn98 {
namespace {

constexpr int16_t kNotTakenOut = 8; // a key of this number takes no tax out of the gross amount

bool withinRange(int64_t amount) {
  return amount >= -vlba98::maxMoney && amount <= vlba98::maxMoney;
}

// An empty rate is zero.
int64_t rateOf(const STEUSA &key) {
  return vlba98::parseMoney(key.Satz).value_or(0);
}

bool excludesTax(const STEUSA &key) {
  return (taxFlags(key) & kTaxExcluded) != 0;
}

} // namespace

TaxChoice chooseTaxKey(int16_t debitKey, int16_t creditKey, int32_t debitKind, int32_t creditKind, bool swissRules) {
  auto mayTake = [&](int32_t against, int32_t own) {
    return against != ZELK_KOSTENSTELLE && (own != ZELK_DEBITOR || swissRules);
  };
  const bool creditHasKey = (creditKey & ~kNoTaxKey) != 0;
  if ((debitKey & ~kNoTaxKey) == 0)
    return creditHasKey && mayTake(debitKind, creditKind) ? TaxChoice{creditKey, TaxSide::Credit} : TaxChoice{};
  return !creditHasKey && mayTake(creditKind, debitKind) ? TaxChoice{debitKey, TaxSide::Debit} : TaxChoice{};
}

int32_t taxFlags(const STEUSA &key) {
  switch (key.Art) {
  case kTaxFree:
    return 0x1000;
  case kOutputTax:
    return 0x0001;
  case kInputTax:
    return 0x0002;
  case kAcquisition:
    return 0x0400;
  case kReverseCharge:
    return 0x0200;
  default:
    return 0;
  }
}

std::optional<STEUSA> GetSteusa(Store &store, int16_t key, const char *reversedDate, int64_t rate) {
  auto record = atMost<STEUSA>(store, key, reversedDate);
  while (record && record->Schluessel == key && rate >= 0 && rateOf(*record) != rate)
    record = previous<STEUSA>(store);
  return record && record->Schluessel == key ? record : std::nullopt;
}

int64_t CalcSteuerAnteil(int64_t tax, const STEUSA &key) {
  if (key.Anteil <= 0 || key.Anteil >= 100) return tax;
  return vlba98::percentOf(tax, key.Anteil * int64_t{100}).value_or(tax);
}

std::optional<TaxSplit> splitTax(int64_t gross, int64_t rate, std::optional<int64_t> given, const STEUSA *key,
                                 bool roundToFive) {
  if (!withinRange(gross) || !withinRange(given.value_or(0))) return std::nullopt;
  auto rounded = [&](int64_t amount) { return roundToFive ? vlba98::roundToFive(amount) : amount; };
  if (rate == 0) key = nullptr;
  TaxSplit result{gross, 0, rate, key != nullptr};
  if (key && excludesTax(*key)) {
    result.rate = 0;
  } else if (given) {
    result.tax = rounded(*given);
  } else if (key && key->Schluessel != kNotTakenOut) {
    auto net = vlba98::netOfGross(gross, rate);
    if (!net) return std::nullopt;
    result.tax = rounded(CalcSteuerAnteil(gross - rounded(*net), *key));
  }
  result.net = gross - result.tax;
  // What was reckoned stands, even where rounding to five hundredths made it more than the gross amount.
  bool signsDiffer = given && ((gross <= 0 && result.net > 0) || (gross >= 0 && result.net < 0));
  if (signsDiffer || !withinRange(result.tax) || !withinRange(result.net)) return std::nullopt;
  return result;
}

bool fitsTaxRate(int64_t gross, int64_t rate, int64_t given, const STEUSA &key) {
  constexpr int64_t tolerance = 5;
  if (rate == 0) return given == 0;
  if ((given < 0 && gross > 0) || (given > 0 && gross < 0)) return false;
  auto isNear = [&](int64_t tax) {
    return std::abs(given - tax) <= tolerance || std::abs(given - CalcSteuerAnteil(tax, key)) <= tolerance;
  };
  auto net = vlba98::netOfGross(gross, rate);
  if (net && isNear(gross - *net)) return true;
  // Where the gross amount holds no tax, an invoice states the tax that comes on top of it.
  if (!excludesTax(key)) return false;
  auto onTop = vlba98::percentOf(gross, rate);
  return onTop && isNear(*onTop);
}

} // namespace vlfn98
