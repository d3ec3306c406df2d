/// Validates a split posting and writes it into its batch.
#pragma once

#include "frame/context.h"
#include "vlfn98/client.h"
#include "zelk98/zelk98.h"

namespace postings {

/// One run of the checks over one posting. The client is open and the tables are locked.
class Insertion {
public:
  Insertion(frame::ThreadContext &context, vldb98::Store &store, const ZELK_SPLITBUCHUNG &request)
      : context_(context), store_(store), request_(request) {}

  /// Runs the checks in their order and stores the posting. \return 1, or the code of the first check that failed; then
  /// the batch is as it was
  ZelkResult run();

private:
  // Each returns ZELK_OK to go on.
  ZelkResult checkBatch();
  ZelkResult checkDocumentDate();
  ZelkResult checkLineCount();
  ZelkResult replaceOpeningAccounts();
  ZelkResult checkPaymentSlip();
  ZelkResult registerDocument();
  ZelkResult checkSplitShape();
  ZelkResult checkPaymentTerm();
  ZelkResult checkCurrency();
  ZelkResult checkFirstAccounts();
  ZelkResult takeDocumentNumber();
  ZelkResult checkValueDate();
  ZelkResult checkLines();
  ZelkResult write();

  ZelkResult checkLine(int index);
  ZelkResult lookUpAccount(const char (&account)[8], int32_t kind, bool &valid);
  ZelkResult refuse(ZelkResult code, int message, std::string_view fill = {}, int line = -1) const;

  frame::ThreadContext &context_;
  vldb98::Store &store_;
  ZELK_SPLITBUCHUNG request_; // a copy: the checks bring accounts and amounts to the store's form
  vldb98::BATCHBUCHUNG posting_{};
};

} // namespace postings
