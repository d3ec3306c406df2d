/// Sample books, and what the ledger holds in words.
#pragma once

#include "ledger/batch_run.h"
#include "support/drafts.h"

namespace test {

/// A step through all rows of a table of the open client, of the open year.
template <class Visit> void eachRow(vldb98::Store &store, int table, Visit &&visit) {
  vldb98::DATENBANK record{};
  uint8_t found = 0;
  int done = store.StepFirstExt(record, found, vldb98::FileNumber(table));
  for (; done && found; done = store.StepNextExt(record, found, vldb98::FileNumber(table)))
    visit(record);
  EXPECT_TRUE(done) << table;
}

class LedgerBooks : public PostingBooks {
protected:
  ledger::BatchOutcome post(int32_t client = 1, int32_t batch = 3, int32_t user = 0);
  void openYear(uint16_t client, int year);

  /// The entries of a fiscal year, a text each: "3:10010 S 119,00; 0:8400 H 100,00 3/19,00; ...": table, account, side,
  /// amount, tax key and rate; "(opening)" and "(closing)" after it.
  std::vector<std::string> journal(uint16_t client, int year);
  /// The items of a document number and their payments: "100,00 left 60,00" for an open one, "2025/1: paid 40,00 left
  /// 60,00" for a payment. Foreign amounts follow in brackets.
  std::string itemsOf(uint16_t client, const std::string &number);
  /// All rows of a client's tables, of all its fiscal years.
  std::string dumpClient(uint16_t client);

  std::unique_ptr<vldb98::Store> store_ = session();
};

} // namespace test
