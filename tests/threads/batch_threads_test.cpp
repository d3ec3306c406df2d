// Batches that are emptied and deleted while others post into them.
#include <atomic>
#include <thread>

#include "support/books.h"

namespace test {
namespace {

using namespace vldb98;

class BatchThreads : public Books {
protected:
  /// Whatever was deleted: no line or cost posting without its posting, and the batch tells whether it holds some.
  void expectWholeBatch(Store &store, int32_t batch) {
    uint8_t found;
    ASSERT_TRUE(store.SetzeFista(1, found) && found);
    size_t postings = 0, lines = 0;
    BATCHBUCHUNG posting{};
    for (int32_t next = 0;; next = posting.Nr + 1) {
      ASSERT_TRUE(store.ReadBat(posting, batch, next, found));
      if (!found) break;
      ++postings;
      lines += store.lineCount();
    }
    EXPECT_EQ(lines, 3 * postings);
    size_t rows = 0;
    DATENBANK record{};
    int done = store.StepFirstExt(record, found, kSplit);
    for (; done && found; done = store.StepNextExt(record, found, kSplit))
      ++rows;
    EXPECT_EQ(rows, lines);
    ASSERT_TRUE(store.UsedGet(record, KeyBuilder().number(batch), found, kStapel));
    if (found) {
      EXPECT_EQ(record.Stapel.Bebucht != 0, postings > 0);
    } else {
      EXPECT_EQ(postings, 0u);
    }
    EXPECT_TRUE(nothingLocked(store, 1));
  }
};

TEST_F(BatchThreads, PostAndDeleteExcludeEachOther) {
  constexpr int kWriters = 3, kPerWriter = 15;
  std::atomic<int> running{kWriters};
  std::vector<std::thread> threads;
  for (int i = 0; i < kWriters; ++i)
    threads.emplace_back([&] {
      ZELK_SPLITBUCHUNG posting = validSplit(3);
      posting.Stapelnummer = 8;
      for (int n = 0; n < kPerWriter; ++n)
        EXPECT_EQ(ZELK_SplitBuchungEinfuegen(&posting, 0), ZELK_OK);
      --running;
    });
  while (running > 0)
    EXPECT_EQ(ZELK_LoescheStapel(1, 8, 0, 0), ZELK_OK);
  for (std::thread &thread : threads)
    thread.join();
  auto store = session(std::chrono::milliseconds(0));
  expectWholeBatch(*store, 8);
  EXPECT_EQ(ZELK_LoescheStapel(1, 8, 0, 0), ZELK_OK);
  expectWholeBatch(*store, 8);
}

TEST_F(BatchThreads, NobodyPostsIntoADeletedBatch) {
  auto store = session(std::chrono::milliseconds(0));
  for (int round = 0; round < 5; ++round) {
    if (round > 0) {
      ASSERT_EQ(ZELK_Stapel(1, 1, 8, "Wieder da", 0, 0, 0, 0), ZELK_OK);
    }
    std::atomic<int> posted{0}, refused{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 2; ++i)
      threads.emplace_back([&] {
        ZELK_SPLITBUCHUNG posting = validSplit(3);
        posting.Stapelnummer = 8;
        ZelkResult result;
        while ((result = ZELK_SplitBuchungEinfuegen(&posting, 0)) == ZELK_OK)
          ++posted;
        EXPECT_EQ(result, ZELKERR_uzl_Stapelnr);
        ++refused;
      });
    while (posted < 4)
      std::this_thread::yield();
    EXPECT_EQ(ZELK_LoescheStapel(1, 8, 1, 0), ZELK_OK);
    for (std::thread &thread : threads)
      thread.join();
    EXPECT_EQ(refused, 2);
    expectWholeBatch(*store, 8);
  }
}

TEST_F(BatchThreads, ANameIsGivenOnce) {
  constexpr int kThreads = 4, kNames = 25;
  std::atomic<int> batches{0}, terms{0}, others{0};
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i)
    threads.emplace_back([&] {
      for (int n = 0; n < kNames; ++n) {
        std::string name = "Neu " + std::to_string(n);
        ZelkResult batch = ZELK_Stapel(1, 1, 0, name.c_str(), 0, 0, 0, 0);
        ZelkResult term = ZELK_Zahlungsziel(1, 1, 0, name.c_str(), 0, "", 0, "", 30, 0, 0, "", 0, 0);
        batches += batch == ZELK_OK;
        terms += term > 0;
        others += (batch != ZELK_OK && batch != ZELKERR_uzl_Name) || (term < 0 && term != ZELKERR_ZZ_existiert);
      }
    });
  for (std::thread &thread : threads)
    thread.join();
  EXPECT_EQ(batches, kNames);
  EXPECT_EQ(terms, kNames);
  EXPECT_EQ(others, 0);
}

} // namespace
} // namespace test
