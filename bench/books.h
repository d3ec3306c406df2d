/// Books to measure on, twice: what goes through the library and what goes past it write to a database of their own, so
/// that neither pays for the other's log.
#pragma once

#include <filesystem>
#include <initializer_list>
#include <memory>
#include <string>

#include "store/store.h"
#include "zelk98/zelk98.h"

namespace bench {

constexpr int kYear = 2026;
constexpr int kAccounts = 10000; ///< debtors
/// Batches, by the postings that they hold at the start.
constexpr int kLargeBatch = 1, kLargeBatchPostings = 100000;
constexpr int kSmallBatch = 2, kSmallBatchPostings = 1000;
constexpr int kBatch = 3;

/// The number of the i-th debtor.
std::string accountNumber(int i);
int randomAccount();

/// Ends the program where a measure would be one of something else.
void require(bool condition, const char *what);

/// A client with accounts, a tax key and batches, as postings of makePosting need them.
/// \param batches postings that each of the batches 1, 2, ... holds
void fill(vldb98::Store &store, uint16_t number, int debtors, std::initializer_list<int> batches);

class Books {
public:
  /// Makes them in a temporary folder, which is removed at the end of the program.
  Books();
  ~Books();
  Books(const Books &) = delete;
  Books &operator=(const Books &) = delete;

  /// A session of its own in the library's database.
  std::unique_ptr<vldb98::Store> openStore() const;
  /// The settings of the library, and the database of the bare measures.
  std::string settingsFile() const { return folder_ / "settings.ini"; }
  std::string bareFile() const { return folder_ / "bare.db"; }
  std::string protocolFile() const { return folder_ / "protokoll.txt"; }
  /// The library's database, for bare reads beside its own.
  std::string libraryFile() const;

private:
  std::filesystem::path folder_;
};

Books &books();

/// Where the library of this process finds its settings.
void useSettings(const std::string &file);

/// A posting with tax that the library takes: a debtor on the debit side, revenue on the credit side.
ZELK_BUCHUNG makePosting(int batch);

} // namespace bench
