/// The turnover of an account, and its balance on a day.
#pragma once

#include <optional>

#include "evaluations/figures.h"
#include "vlfn98/balances.h"

namespace evaluations {

/// What a period code stands for; nothing for one that is none.
std::optional<vlfn98::ValueRange> parsePeriod(int32_t code);

struct TurnoverOutputs {
  char *debit, *credit, *balance;
  char *euroDebit, *euroCredit, *euroBalance;
};

/// \param year four digits; below 0: the client's current booking year
frame::Outcome turnover(frame::ThreadContext &context, const AccountRequest &account, int32_t period, int32_t year,
                        int32_t form, const TurnoverOutputs &outputs);

/// The balance at the end of a day, from the values of the months before and the entries of its month up to it, without
/// closing entries. \param date as the host writes it
frame::Outcome balanceOnDay(frame::ThreadContext &context, const AccountRequest &account, const char *date,
                            int32_t form, char *balance, char *euroBalance);

} // namespace evaluations
