// Hand-overs of several threads, with a real process at the other end.
#include <algorithm>
#include <thread>

#include "support/dependants.h"

namespace test {
namespace {

using NotificationThreads = Dependants;

constexpr int kPostings = 15, kLines = 12;

TEST_F(NotificationThreads, EveryChangeArrivesOnceAndWhole) {
  registerApplications();
  install();
  auto postAll = [](const std::string &writer) {
    for (int i = 1; i <= kPostings; ++i)
      EXPECT_EQ(postLines(writer + "-" + std::to_string(i), kLines), ZELK_OK);
  };
  // The first calls of both meet at the attach.
  std::thread first(postAll, "A"), second(postAll, "B");
  first.join();
  second.join();
  ZELK_Detach();
  EXPECT_EQ(recorder.takeText(), "");
  std::vector<std::string> all = lines();
  ASSERT_EQ(all.size(), 2 * kPostings * 2 + 1u);
  for (const char *writer : {"A", "B"}) {
    auto at = all.begin();
    for (int i = 1; i <= kPostings; ++i) {
      // The parts of a posting follow each other, and the postings of a writer keep their order.
      std::vector<std::string> parts = printedFor(writer + ("-" + std::to_string(i)), kLines);
      at = std::search(at, all.end(), parts.begin(), parts.end());
      ASSERT_NE(at, all.end()) << parts.front();
    }
  }
}

TEST_F(NotificationThreads, HandOversOfAccountsExcludeEachOther) {
  constexpr int kThreads = 4, kChanges = 2000;
  registerApplications();
  install();
  ZELK_Attach(true);
  std::vector<std::thread> writers;
  for (int writer = 0; writer < kThreads; ++writer)
    writers.emplace_back([writer] {
      vldb98::SACHKONTO account{};
      for (int i = 0; i < kChanges; ++i) {
        put(account.Nr, std::to_string(1000000 + writer * kChanges + i));
        ZELK_Out(2, ZELK_SACHKONTO, writer, &account, 0);
      }
    });
  for (std::thread &writer : writers)
    writer.join();
  ZELK_Detach();
  std::vector<std::string> all = lines(), expected;
  for (int i = 0; i < kThreads * kChanges; ++i)
    expected.push_back("geändert Sachkonto " + std::to_string(i / kChanges) + " " + std::to_string(1000000 + i) +
                       " [] ");
  all.pop_back();
  std::sort(all.begin(), all.end());
  EXPECT_EQ(all, expected);
}

TEST_F(NotificationThreads, ASilentProcessIsToldOnce) {
  registerApplications();
  installStubborn("stumm");
  setTimeout("10");
  ZELK_Attach(true);
  auto postAll = [](const std::string &writer) {
    for (int i = 1; i <= kPostings; ++i)
      EXPECT_EQ(postLines(writer + "-" + std::to_string(i), 1), ZELK_OK);
  };
  std::thread first(postAll, "A"), second(postAll, "B");
  first.join();
  second.join();
  EXPECT_EQ(recorder.shown.size(), 1u);
  ZELK_Detach();
  EXPECT_EQ(postingsOf(1, 3).size(), 2u * kPostings);
}

} // namespace
} // namespace test
