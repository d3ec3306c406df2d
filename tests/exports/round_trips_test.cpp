// What a call costs on a server, where the network is the slow part: the statements that it sends.
#include <functional>

#include "odbc/odbc_connection.h"
#include "support/drafts.h"

namespace test {
namespace {

class RoundTrips : public PostingBooks {
protected:
  void SetUp() override {
    if (!onServer()) GTEST_SKIP() << "there is no server (tests/mariadb/with_server)";
  }
};

/// The statements that some work sends in a session that has done it before.
uint64_t tripsOf(const std::function<void()> &work) {
  work();
  const uint64_t before = vldb98::roundTrips();
  work();
  return vldb98::roundTrips() - before;
}

void balance(const char *account, int32_t kind) {
  char balance[20] = "", euro[20] = "";
  EXPECT_EQ(ZELK_HoleSaldo(1, account, kind, 0, 1, balance, euro, "", 0, ""), ZELK_OK);
}

int walked(int32_t kind) {
  int count = 0;
  ZELK_SAKO account;
  for (ZelkResult result = ZELK_InitHoleKonto(1, kind, 0, nullptr, 0); result == ZELK_OK; ++count)
    result = ZELK_HoleSako(&account);
  return count;
}

TEST_F(RoundTrips, OfEachCallAreFew) {
  auto posted = [](const Draft &draft) { return [draft] { EXPECT_EQ(insertWhole(draft), ZELK_OK); }; };
  Draft split{1, 3, {}};
  for (int i = 0; i < 10; ++i)
    split.lines.push_back({.debit = "1200", .credit = i % 2 ? "1000" : "1010"});
  Draft costs = split, foreign{1, 3, {{"10010", "8400", "119,00", "19,00"}}, "USD"};
  for (DraftLine &line : costs.lines)
    line = {.debit = "4120", .credit = "1200", .costs = {{{"100"}, "60,00"}, {{"200"}, "40,00"}}};
  DraftLine templated{"4120", "1200"};
  templated.costTemplate = 2;
  auto pieces = [](const Draft &draft) { return [draft] { EXPECT_EQ(insertInPieces(draft), ZELK_OK); }; };
  for (int i = 0; i < 10; ++i)
    ASSERT_EQ(insertWhole({1, 2, {{"10010", "8400", "119,00", "19,00"}}}), ZELK_OK);
  const struct {
    const char *what;
    std::function<void()> work;
    uint64_t trips;
  } rows[] = {
      {"without tax", posted({1, 3, {{.debit = "1200", .credit = "1000"}}}), 8},
      {"with tax, a debtor", posted({1, 3, {{"10010", "8400", "119,00", "19,00"}}}), 9},
      {"in another year", posted({1, 3, {{"10010", "8400", "119,00", "19,00"}}, "", "211225"}), 11},
      {"split of ten lines", posted(split), 8},
      {"split of ten lines with costs", pieces(costs), 11},
      {"cost template", posted({1, 3, {templated}}), 12},
      {"foreign currency", posted(foreign), 9},
      {"balance of an account", [] { balance("10010", ZELK_DEBITOR); }, 2},
      {"whether an account exists", [] { EXPECT_EQ(ZELK_ExistiertKonto(1, "1200", ZELK_SACHKONTO, 0, nullptr), 1); },
       2},
      {"all accounts", [] { EXPECT_GT(walked(ZELK_SACHKONTO), 50); }, 7},
      {"ten postings of a batch", [] { EXPECT_EQ(postingsOf(1, 2).size(), 10u); }, 47},
  };
  for (const auto &row : rows)
    EXPECT_EQ(tripsOf(row.work), row.trips) << row.what;
}

} // namespace
} // namespace test
