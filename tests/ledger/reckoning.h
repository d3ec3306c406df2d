/// The books of a client reckoned from its folder of master data and from files of postings: plain integers, no code of
/// the library's.
#pragma once

#include <compare>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace test {

/// Hundredths of an amount as files and money texts write it; an empty one is 0.
int64_t cents(const std::string &text);

/// A day as yyyymmdd.
using Day = int;

struct Move {
  Day day;
  int year, month; ///< fiscal year, and month of it
  int kind;        ///< 0 of the year, 1 opening, 2 closing
  bool debit;
  int64_t own, euro;
};

struct CostMove {
  Day day;
  int year, month;
  std::string costType;
  std::vector<std::string> centres;
  int64_t own, euro; ///< below zero where they lessen the costs
};

struct Item {
  int64_t gross = 0, left = 0;
  std::string currency; ///< empty: the client's
  int64_t foreignGross = 0, foreignLeft = 0;
  int payments = 0;
  bool operator==(const Item &) const = default;
};

/// What a payment left of an item.
struct Payment {
  int year, line; ///< fiscal year, and number among the item's payments
  std::tuple<int, std::string, std::string> item;
  int64_t paid, discount, left, foreignLeft;
  auto operator<=>(const Payment &) const = default;
};

using AccountKey = std::pair<int, std::string>;            ///< table (0, 2, 3) and number
using ItemKey = std::tuple<int, std::string, std::string>; ///< table and number of the account, number of the item
using Row = std::map<std::string, std::string>;            ///< of a file, by column

class Reckoning {
public:
  /// \param folder of the client's master data
  explicit Reckoning(const std::string &folder);

  /// Posts the rows of a file of postings in their order.
  void post(const std::string &file);

  std::map<AccountKey, std::vector<Move>> moves;
  std::vector<CostMove> costs;
  std::map<ItemKey, Item> items; ///< that are open
  std::vector<Payment> payments;

  std::vector<int> years() const;
  const Row &client() const { return client_; }

private:
  struct ItemMove {
    ItemKey key;
    int64_t amount = 0, income = 0, foreign = 0;
    bool balance = false; ///< some of it against a balance-sheet account
  };
  struct Head {
    Day day = 0;
    int year = 0, month = 0, kind = 0;
    std::string currency, item;
  };
  const Row *latest(const std::vector<Row> &rows, const char *name, const std::string &value, const char *since,
                    Day day) const;
  int64_t toEuro(int64_t own) const;
  int64_t toOwn(int64_t foreign, const Head &head) const;
  void move(const Head &head, const std::string &account, bool debit, int64_t own, int64_t euro);
  void postLine(const Head &head, const Row &line, std::vector<ItemMove> &itemMoves);
  void postCosts(const Head &head, const Row &row, const Row &line);
  void postItem(const Head &head, const ItemMove &itemMove);

  Row client_;
  std::map<std::string, Row> accounts_;
  std::vector<Row> taxKeys_, rates_, fiscalYears_;
  int64_t costsSoFar_ = 0, euroSoFar_ = 0; ///< of the line
};

} // namespace test
