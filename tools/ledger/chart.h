/// The accounts that a batch moves: read once, summed up in memory, written once.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "store/store.h"
#include "vlba98/date.h"

namespace ledger {

/// What a posting belongs to within its fiscal year.
enum class EntryKind : int16_t { OfTheYear = 0, Opening = 1, Closing = 2 };

/// An amount in the client's currency and in Euro, in hundredths.
struct Amount {
  int64_t own = 0, euro = 0;
};

struct ChartAccount {
  int table; ///< 0 general ledger, 2 creditors, 3 debtors
  vldb98::DATENBANK record;
  bool moved = false;
};

struct CostCentre {
  vldb98::KOST record;
  bool moved = false;
};

struct ChartYear {
  vldb98::GESCHAEFTSJAHR record;
  char code[3];
  int32_t lastEntry = -1; ///< greatest entry number; -1: not read yet
  std::map<std::pair<int, std::string>, ChartAccount> accounts;
  std::map<std::pair<int, std::string>, CostCentre> centres; ///< by dimension and number
};

/// "TT.MM.JJJJ" of a reversed date.
std::string displayed(const char *reversedDate);

/// The chart of accounts of the open client in all its fiscal years. All functions throw StoreFailed when the store
/// failed, and Refusal where an amount or a record stands in the way of a posting.
class Chart {
public:
  explicit Chart(vldb98::Store &store);

  std::map<int, ChartYear> &years() { return years_; }
  bool isFirst(const ChartYear &year) const { return year.record.Jahr == firstYear_; }
  bool mandatoryCostCentres() const { return extension_.Kostenstellenpflicht != 0; }
  const vldb98::FISTA_EXT &extension() const { return extension_; }

  /// The fiscal year of a document date, which must not be closed.
  ChartYear &yearOf(const char *reversedDate);
  /// Makes a year the open one.
  void open(const ChartYear &year);
  int32_t nextEntry(ChartYear &year);

  /// An account that may be posted to.
  /// \param role what it is to the posting, for the refusal ("Sollkonto")
  ChartAccount &account(ChartYear &year, int table, const char *number, const char *role);
  CostCentre &centre(ChartYear &year, int dimension, const char *number);
  /// The record of a tax key on a day; below 0 any rate, else the one with the rate.
  const vldb98::STEUSA &taxKey(int16_t key, const char *reversedDate, int64_t rate);
  /// Null when there is no such term.
  const vldb98::ZAHLZIEL *term(int32_t number);

  /// The amount with its value in Euro: itself where the books are kept in Euro, else at the client's fixed rate, each
  /// amount rounded commercially.
  Amount valued(int64_t own) const;

  void move(ChartAccount &account, const ChartYear &year, EntryKind kind, const char *reversedDate, bool debit,
            const Amount &amount);
  void moveCosts(CostCentre &centre, const ChartYear &year, const char *reversedDate, const Amount &amount);

  /// Takes back what was moved since the last call of either function: a refused posting leaves nothing behind.
  void takeBack();
  void keep() { former_.clear(); }

  /// Writes every account and cost centre that was moved.
  void write();

private:
  using MoneyText = char[13];

  static int monthOf(const ChartYear &year, const char *reversedDate);
  void add(MoneyText &sum, int64_t amount, const std::string &of);

  vldb98::Store &store_;
  int firstYear_;
  int64_t euroRate_ = 0; ///< millionths of the client's currency for one Euro; 0: the books are kept in Euro
  vldb98::FISTA_EXT extension_{};
  std::map<int, ChartYear> years_;
  std::map<std::tuple<int16_t, std::string, int64_t>, vldb98::STEUSA> taxKeys_;
  std::map<int32_t, vldb98::ZAHLZIEL> terms_;               ///< number 0 in the record: there is none
  std::vector<std::pair<MoneyText *, std::string>> former_; ///< values that were moved, and what they were
};

} // namespace ledger
