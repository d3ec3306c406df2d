/// What the amounts of a line come to: tax and net amount, both in the client's currency too, and when they are due.
#pragma once

#include <map>
#include <optional>
#include <string>

#include "postings/in_progress.h"
#include "postings/rate_entry.h"
#include "vlfn98/currency.h"

namespace postings {

/// Reckons the amounts of a posting's lines, with one rate of exchange for all of them.
class AmountReckoning {
public:
  explicit AmountReckoning(PostingInProgress &posting) : posting_(posting) {}

  /// Fills tax key, amounts and due date of a line that has been checked.
  Refusal reckon(LineInProgress &line);

  /// The rate for want of which reckon refused with -65.
  const MissingRate &missingRate() const { return missingRate_; }

private:
  Refusal chooseTax(LineInProgress &line);
  Refusal readTaxKey(LineInProgress &line);
  Refusal takeTaxOut(LineInProgress &line);
  Refusal toOwnCurrency(LineInProgress &line);
  Refusal takeOwnAmounts(LineInProgress &line);
  Refusal convert(LineInProgress &line);
  Refusal readRate();
  void reckonDueDate(LineInProgress &line);
  const std::string &dueDateOf(int32_t term);

  PostingInProgress &posting_;
  std::optional<vlfn98::ExchangeRate> rate_;
  MissingRate missingRate_{};
  std::map<int32_t, std::string> dueDates_; // by payment term
};

} // namespace postings
