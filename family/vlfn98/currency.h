/// Foreign currencies: stored exchange rates and conversion. Amounts in hundredths.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "store/store.h"

namespace vlfn98 {

/// Currency indexes: an amount is in the currency of the client, in Euro, or in the one that is named beside it.
constexpr int16_t kOwnCurrency = 0, kEuro = -1, kOtherCurrency = 1;

/// So many units of the client's currency stand for so many units of the foreign one.
struct ExchangeRate {
  int64_t millionths = 0; ///< above 0
  int32_t units = 1;      ///< 1, 10, 100, ...
};

/// A rate as text: digits, comma, up to six decimals ("1,0745"), greater than zero. \return millionths; nothing for any
/// other text
std::optional<int64_t> parseRate(std::string_view text);
/// The text of a rate with at least two decimals, at most six: "1,0745".
void formatRate(int64_t millionths, char (&text)[13]);

/// The latest rate of a currency (three capital letters) of the open client from a day or before it.
std::optional<ExchangeRate> findRate(vldb98::Store &store, const char *currency, const char *reversedDate);

/// Stores a rate for a day; one that is stored for that day already stays.
void storeRate(vldb98::Store &store, const char *currency, const char *reversedDate, const ExchangeRate &rate);

/// An amount in the client's currency, rounded commercially. \return nothing beyond ±999.999.999,99
std::optional<int64_t> toOwnCurrency(int64_t foreign, const ExchangeRate &rate);

} // namespace vlfn98
