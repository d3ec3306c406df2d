/// Posts a batch to the ledger, as the accounting program does.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "ledger/open_items.h"

namespace ledger {

struct BatchOrder {
  int32_t client = 0, batch = 0;
  char day[7] = ""; ///< day on which the batch is posted (reversed date)
  int32_t user = 0; ///< who posts; 0: nobody in particular
  std::function<void(size_t done, size_t total)> progress = {};
};

/// Why a posting cannot be posted. UTF-8.
struct RefusedPosting {
  int32_t posting; ///< its number in the batch; 0: the batch itself
  std::string document, reason;
};

/// What the batch came to in a fiscal year.
struct YearFigures {
  size_t postings = 0, entries = 0, costs = 0; ///< entries: lines of the journal
  int64_t debit = 0, credit = 0;               ///< of the general ledger, in the client's currency
};

struct BatchOutcome {
  enum { Posted, NothingToPost, Refused, TablesLocked, StoreFailed } state = StoreFailed;
  std::vector<RefusedPosting> refused;
  std::map<int, YearFigures> years;
  ItemCounts items;
};

/// Posts every posting of the batch in one transaction and clears the batch, or changes nothing. All tables concerned
/// are locked meanwhile, in the order in which the insertion of a posting locks them.
BatchOutcome postBatch(vldb98::Store &store, const BatchOrder &order);

} // namespace ledger
