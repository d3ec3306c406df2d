/// Entry of an exchange rate by a person, where a posting needs one that is not stored.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "vlfn98/currency.h"

namespace postings {

struct MissingRate {
  char currency[4];
  char day[7]; ///< reversed date
};

/// "GBP am 21.01.2026".
std::string currencyAndDay(const MissingRate &missing);

/// Asks for the rate until it has a right form. \param ownCurrency the client's \return nothing when none was entered
std::optional<vlfn98::ExchangeRate> askForRate(const MissingRate &missing, std::string_view ownCurrency);

} // namespace postings
