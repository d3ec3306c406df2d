#include "postings/rate_entry.h"

#include "frame/messages.h"
#include "platform/ui.h"
#include "vlba98/date.h"
#include "vlba98/text.h"

namespace postings {

namespace {

vlba98::DateText10 dayOf(const MissingRate &missing) {
  return vlba98::toDisplay(*vlba98::fromReversed(missing.day));
}

} // namespace

std::string currencyAndDay(const MissingRate &missing) {
  return std::string(missing.currency) + " am " + dayOf(missing).data();
}

std::optional<vlfn98::ExchangeRate> askForRate(const MissingRate &missing, std::string_view ownCurrency) {
  const auto day = dayOf(missing);
  std::string prompt(resources::text(resources::kRateEntry));
  for (std::string_view value : {std::string_view(missing.currency), std::string_view(day.data()),
                                 vlba98::trimmed(ownCurrency), std::string_view(missing.currency)})
    prompt.replace(prompt.find("%s"), 2, value);
  for (;;) {
    auto entered = platform::ui().input(frame::kMessageCaption, prompt);
    if (!entered) return std::nullopt;
    if (auto millionths = vlfn98::parseRate(vlba98::trimmed(*entered))) return vlfn98::ExchangeRate{*millionths, 1};
    frame::showMessage(resources::kRateInadmissible);
  }
}

} // namespace postings
