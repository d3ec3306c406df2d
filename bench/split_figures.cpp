// A long split posting, built piece by piece, beside short ones: what a line costs must not grow with their number.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string>
#include <vector>

#include "books.h"
#include "durability.h"
#include "figures.h"

namespace bench {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int kTurns = 41, kShort = 10, kLong = 1000;

void post(int lines) {
  const std::string debtor = accountNumber(randomAccount());
  ZelkResult result = ZELK_SplitStart(1, kBatch, "210126", "S-1", 0, 0, "", "", "", 0, "", "");
  for (int i = 0; i < lines && result == ZELK_OK; ++i)
    result = ZELK_SplitEinfuegen(debtor.c_str(), ZELK_DEBITOR, "8400", ZELK_SACHKONTO, "119,00", "19,00", "",
                                 "Ein Teil der Splitbuchung", 0, "");
  require(result == ZELK_OK && ZELK_SplitEnde(1, 0) == ZELK_OK, "a split posting through the library");
}

/// As many lines on either side. \return microseconds per line
double perLine(int lines) {
  auto begin = Clock::now();
  for (int posted = 0; posted < kLong; posted += lines)
    post(lines);
  return std::chrono::duration<double, std::micro>(Clock::now() - begin).count() / kLong;
}

double median(std::vector<double> values) {
  auto middle = values.begin() + ptrdiff_t(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

} // namespace

Figures splitFigures() {
  WithoutDurability whileMeasured;
  perLine(kLong), perLine(kShort);
  std::vector<double> ofLong, ofShort, ratios;
  for (int i = 0; i < kTurns; ++i) {
    const bool longFirst = i % 2;
    if (longFirst) ofLong.push_back(perLine(kLong));
    ofShort.push_back(perLine(kShort));
    if (!longFirst) ofLong.push_back(perLine(kLong));
    ratios.push_back(ofLong.back() / ofShort.back());
  }
  std::printf("split postings, each line: of %d median %.1f us, of %d median %.1f us\n", kLong, median(ofLong), kShort,
              median(ofShort));
  return {{"line of a split of 1,000 / line of one of 10", median(ratios), Bound::AtMost, 1}};
}

} // namespace bench
