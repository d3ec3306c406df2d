/// Open items: what postings to personal accounts create, raise and settle.
#pragma once

#include <string>
#include <vector>

#include "ledger/entry.h"

namespace ledger {

/// What one posting does to one personal account, all of its lines together.
struct ItemMovement {
  ChartAccount *account = nullptr;
  ChartAccount *contra = nullptr;
  int64_t amount = 0;   ///< above zero in the usual direction: a debtor owes more, more is owed to a creditor
  int64_t discount = 0; ///< part of the amount that was deducted, not paid
  std::optional<int64_t> foreign;
  const vldb98::SPLIT *first = nullptr;
  std::vector<int64_t> rates; ///< of tax, each once
};

/// The personal accounts that a posting moves. Where some lines of a split pay from a balance-sheet account, those
/// against income-statement accounts are deductions (cash discount).
std::vector<ItemMovement> itemMovementsOf(const std::vector<Movement> &movements);

struct ItemCounts {
  size_t created = 0;  ///< new items
  size_t raised = 0;   ///< items that a posting in their own direction made greater
  size_t payments = 0; ///< historical items written
  size_t settled = 0;  ///< items with nothing left, which are no longer open
};

/// Functions throw StoreFailed when the store failed, and Refusal where an amount leaves its range.
class OpenItems {
public:
  /// \param user number of the user who posts
  OpenItems(vldb98::Store &store, Chart &chart, int32_t user) : store_(store), chart_(chart), user_(user) {}

  /// Posts what a posting does to items: all of it or, with a refusal, nothing.
  void post(const ChartYear &year, const vldb98::BATCHBUCHUNG &posting, const std::vector<ItemMovement> &movements);
  const ItemCounts &counts() const { return counts_; }

private:
  /// What becomes of an item.
  struct Change {
    int table, history; ///< of the item and of its payments
    vldb98::OPBELEG item;
    bool isNew;
    std::optional<vldb98::OPHISTORIE> payment;
  };
  std::optional<Change> reckon(const ChartYear &year, const vldb98::BATCHBUCHUNG &posting,
                               const ItemMovement &movement);
  vldb98::OPBELEG created(const vldb98::BATCHBUCHUNG &posting, const ItemMovement &movement);
  void change(const vldb98::BATCHBUCHUNG &posting, const ItemMovement &movement, Change &change);
  vldb98::OPHISTORIE paymentOf(const vldb98::BATCHBUCHUNG &posting, const ItemMovement &movement,
                               const vldb98::OPBELEG &item);
  void write(const ChartYear &year, Change &change);
  int32_t nextNumber();
  int32_t greatestInHistory(int table, int32_t item);

  vldb98::Store &store_;
  Chart &chart_;
  int32_t user_;
  int32_t lastNumber_ = -1; ///< greatest number of an item; -1: not read yet
  ItemCounts counts_;
};

} // namespace ledger
