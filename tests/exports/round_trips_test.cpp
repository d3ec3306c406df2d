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

TEST_F(RoundTrips, OfEachCallAreFew) {
  auto posted = [](const Draft &draft) { return [draft] { EXPECT_EQ(insertWhole(draft), ZELK_OK); }; };
  Draft split{1, 3, {}};
  for (int i = 0; i < 10; ++i)
    split.lines.push_back({.debit = "1200", .credit = i % 2 ? "1000" : "1010"});
  const struct {
    const char *what;
    std::function<void()> work;
    uint64_t trips;
  } rows[] = {
      {"without tax", posted({1, 3, {{.debit = "1200", .credit = "1000"}}}), 8},
      {"with tax, a debtor", posted({1, 3, {{"10010", "8400", "119,00", "19,00"}}}), 9},
      {"in another year", posted({1, 3, {{"10010", "8400", "119,00", "19,00"}}, "", "211225"}), 11},
      {"split of ten lines", posted(split), 8},
  };
  for (const auto &row : rows)
    EXPECT_EQ(tripsOf(row.work), row.trips) << row.what;
}

} // namespace
} // namespace test
