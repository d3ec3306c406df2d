/// What a posting does to accounts.
#pragma once

#include <optional>
#include <vector>

#include "ledger/chart.h"

namespace ledger {

/// One account moved by one line of a posting.
struct Movement {
  ChartAccount *account;
  ChartAccount *contra;
  bool debit;
  Amount amount;                  ///< below zero for a reversal
  std::optional<int64_t> foreign; ///< the same in the posting's currency
  int16_t taxKey;
  int64_t rate;
  const vldb98::SPLIT *line;
};

/// The amount of a money text; an empty one is zero.
int64_t valueOf(const char *money);

/// Whether the amounts of a line come in Euro beside those in the client's currency.
bool isInEuro(const vldb98::BATCHBUCHUNG &posting, const vldb98::SPLIT &line);

/// The movements of a line: its two accounts, the tax accounts, and the control accounts of personal accounts. Over the
/// general ledger they balance, in the client's currency and in Euro.
/// \throws Refusal when the line cannot be posted
std::vector<Movement> movementsOf(Chart &chart, ChartYear &year, const vldb98::BATCHBUCHUNG &posting,
                                  const vldb98::SPLIT &line);

} // namespace ledger
