// The deletion of a whole batch through ZELK_LoescheStapel, beside bare deletions of the same rows in one transaction.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

#include "bare.h"
#include "books.h"
#include "figures.h"

namespace bench {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int kTurns = 11, kPostings = 10000, kDeleted = 4;
constexpr const char *kTables[] = {"Batchbuchung", "Split", "Kostenbuchung"};

/// Fills the batch with postings of the large one. Another connection than the one that is measured, which so finds its
/// cache as cold on one side as on the other.
class Filler {
public:
  explicit Filler(const std::string &file) : connection_(file) {
    for (const char *table : kTables) {
      BareStatement columns(connection_,
                            std::string("SELECT group_concat('\"' || name || '\"') FROM pragma_table_info('") + table +
                                "') WHERE name NOT IN ('Mandant', 'Stapel')");
      columns.run();
      std::string number = table == kTables[0] ? "Nr" : "Buchung";
      fills_.push_back("INSERT INTO " + std::string(table) + " (Mandant,Stapel," + columns.firstText() +
                       ") SELECT Mandant," + std::to_string(kDeleted) + "," + columns.firstText() + " FROM " + table +
                       " WHERE Mandant=1 AND Stapel=" + std::to_string(kLargeBatch) + " AND " + number +
                       "<=" + std::to_string(kPostings));
    }
  }
  void fill() {
    connection_.execute("BEGIN IMMEDIATE");
    for (const std::string &sql : fills_)
      connection_.execute(sql.c_str());
    connection_.execute(("UPDATE Stapel SET Bebucht=1 WHERE Mandant=1 AND Nr=" + std::to_string(kDeleted)).c_str());
    connection_.execute("COMMIT");
  }
  int64_t rows() {
    BareStatement count(connection_,
                        "SELECT count(*) FROM Split WHERE Mandant=1 AND Stapel=" + std::to_string(kDeleted));
    count.run();
    return count.firstNumber();
  }

private:
  BareConnection connection_;
  std::vector<std::string> fills_;
};

template <class Work> double milliseconds(Filler &filler, Work &&work) {
  filler.fill();
  require(filler.rows() == kPostings, "filling a batch");
  auto begin = Clock::now();
  work();
  auto took = std::chrono::duration<double, std::milli>(Clock::now() - begin).count();
  require(filler.rows() == 0, "emptying a batch");
  return took;
}

double median(std::vector<double> values) {
  std::nth_element(values.begin(), values.begin() + ptrdiff_t(values.size() / 2), values.end());
  return values[values.size() / 2];
}

} // namespace

Figures batchFigures() {
  require(ZELK_Stapel(1, 1, kDeleted, "Zu leeren", 0, 0, 0, 0) == ZELK_OK, "a batch");
  Filler library(books().libraryFile()), beside(books().bareFile());
  BareConnection connection(books().bareFile());
  std::vector<double> measured, bare, ratios;
  for (int turn = 0; turn < kTurns; ++turn) {
    measured.push_back(
        milliseconds(library, [] { require(ZELK_LoescheStapel(1, kDeleted, 0, 0) == ZELK_OK, "deleting a batch"); }));
    bare.push_back(milliseconds(beside, [&] {
      connection.execute("BEGIN IMMEDIATE");
      for (const char *table : kTables)
        connection.execute(
            (std::string("DELETE FROM ") + table + " WHERE Mandant=1 AND Stapel=" + std::to_string(kDeleted)).c_str());
      connection.execute("COMMIT");
    }));
    ratios.push_back(measured.back() / bare.back());
  }
  std::printf("batch of %d postings deleted: median %.1f ms, bare %.1f ms\n", kPostings, median(measured),
              median(bare));
  return {{"deletion of a batch of 10,000 / bare deletion", median(ratios), Bound::AtMost, 3}};
}

} // namespace bench
