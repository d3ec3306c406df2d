// Several threads and processes at the exports at once.
#include <atomic>
#include <condition_variable>
#include <map>
#include <mutex>
#include <thread>

#include "support/drafts.h"

namespace test {
namespace {

constexpr int kPerWriter = 20;

/// The i-th posting of a writer: in turn a single one, and pieces with tax, cost postings and a cost template.
Draft postingOf(const std::string &writer, int i) {
  Draft draft{1, 3, {{"1200", "1000", std::to_string(i)}}};
  if (i % 2)
    draft.lines = {
        {"4920", "70010", "119", "19", "", {{{"200"}, std::to_string(i)}, {{"300"}, std::to_string(100 - i)}}},
        {"4600", "70010", "1,19", "19"}};
  draft.number = writer + '-' + std::to_string(i);
  return draft;
}

/// Posts under document numbers of the writer's own. \return how many were accepted
int postAs(const std::string &writer) {
  int accepted = 0;
  for (int i = 1; i <= kPerWriter; ++i) {
    Draft draft = postingOf(writer, i);
    accepted += (i % 2 ? insertInPieces(draft, 0) : insertWhole(draft, 0)) == ZELK_OK;
  }
  return accepted;
}

struct ChildBooks : Environment {
  void TestBody() override {}
};

ChildRole poster("post", [](const std::string &writer) {
  ChildBooks books;
  return postAs(writer) == kPerWriter ? 0 : 1;
});

using PostingThreads = Books;

TEST_F(PostingThreads, EveryPostingIsThereOnce) {
  std::atomic<int> accepted{0}, children{0};
  std::vector<std::thread> writers;
  for (const char *name : {"T1", "T2", "T3", "T4"})
    writers.emplace_back([&, name] { accepted += postAs(name); });
  for (const char *name : {"P1", "P2"})
    writers.emplace_back([&, name] { children += runChild("post", name) == 0; });
  for (std::thread &writer : writers)
    writer.join();
  EXPECT_EQ(accepted, 4 * kPerWriter);
  EXPECT_EQ(children, 2);

  auto store = session();
  ASSERT_TRUE(store);
  std::map<std::string, int> lastOfWriter;
  int32_t number = 0;
  for (const StoredPosting &stored : storedPostings(*store, 1, 3)) {
    EXPECT_EQ(+stored.posting.Nr, ++number) << "a gap";
    // Each writer's postings are there in their order, whole, and with nobody else's lines.
    std::string writer = std::string(stored.posting.Belegnummer).substr(0, 2);
    const int i = ++lastOfWriter[writer];
    const Draft expected = postingOf(writer, i);
    EXPECT_EQ(stored.posting.Belegnummer, expected.number);
    ASSERT_EQ(stored.lines.size(), expected.lines.size());
    std::string tax, costs = costsOf(stored);
    for (const vldb98::SPLIT &line : stored.lines)
      tax += taxOf(line) + ' ';
    if (i % 2 == 0) {
      EXPECT_EQ(tax + costs, std::to_string(i) + ",00+0,00 0,00% 0/0 ");
      continue;
    }
    std::string own = std::to_string(i) + ",00", rest = std::to_string(100 - i) + ",00";
    EXPECT_EQ(tax, "100,00+19,00 19,00% 5/2 1,00+0,19 19,00% 5/2 ");
    EXPECT_EQ(costs, "200:" + own + '/' + own + "% 300:" + rest + '/' + rest + '%');
    EXPECT_EQ(costsOf(stored, 1), "410.5001:0,40/40,00% 420.5001:0,33/33,00% 420.5002:0,27/27,00%");
  }
  EXPECT_EQ(number, 6 * kPerWriter);
  EXPECT_EQ(lastOfWriter.size(), 6u);
}

TEST_F(PostingThreads, EndedThreadsLeaveNothingOpen) {
  ZELK_ONLY_EMBEDDED();
  auto openFiles = [&] {
    std::string names;
    for (const auto &entry : std::filesystem::directory_iterator(dataFolder()))
      if (entry.path().filename() != vldb98::kDatabaseFile && entry.path().filename() != vldb98::kLockFile)
        names += entry.path().filename().string() + " ";
    return names;
  };
  std::vector<std::thread> threads;
  for (const char *name : {"A", "B"})
    threads.emplace_back([name] {
      ZELK_BUCHUNG posting = validPosting();
      put(posting.Belegnummer, name);
      EXPECT_EQ(ZELK_BuchungEinfuegen(&posting, 0), ZELK_OK);
      // Abandoned in the middle.
      EXPECT_EQ(ZELK_InitHoleKonto(1, ZELK_SACHKONTO, 0, nullptr, 0), ZELK_OK);
      ZELK_SAKO account;
      EXPECT_EQ(ZELK_HoleSako(&account), ZELK_OK);
    });
  for (std::thread &thread : threads)
    thread.join();
  // The write-ahead log is there as long as a session is.
  EXPECT_EQ(openFiles(), "");
  auto store = session(std::chrono::milliseconds(0));
  ASSERT_TRUE(store);
  EXPECT_NE(openFiles(), "");
  uint8_t found;
  ASSERT_TRUE(store->SetzeFista(1, found) && found);
  for (const vldb98::Table &table : vldb98::allTables())
    EXPECT_TRUE(store->Lock(vldb98::FileNumber(table.number), nullptr, 0)) << table.name;
}

// Lets two threads wait for each other. (The standard library's barrier of GCC 12 loses wake-ups on Windows.)
class TurnOfTwo {
public:
  void arriveAndWait() {
    std::unique_lock lock(mutex_);
    int mine = turn_;
    if (++arrived_ == 2) {
      arrived_ = 0;
      ++turn_;
      both_.notify_all();
      return;
    }
    both_.wait(lock, [&] { return turn_ != mine; });
  }

private:
  std::mutex mutex_;
  std::condition_variable both_;
  int arrived_ = 0, turn_ = 0;
};

TEST_F(PostingThreads, ClientListsDoNotDisturbEachOther) {
  constexpr int kRounds = 20;
  // One step of each thread in turn, the second one a step behind.
  TurnOfTwo turn;
  auto walk = [&](int behind) {
    std::string codes;
    for (int i = 0; i < behind; ++i)
      turn.arriveAndWait();
    for (int i = 0; i < kRounds; ++i) {
      codes += std::to_string(ZELK_InitHoleMandant());
      turn.arriveAndWait();
      for (int client = 0; client < 2; ++client) {
        uint32_t number = 0;
        codes += std::to_string(ZELK_HoleMandant(&number, nullptr, nullptr));
        codes += std::to_string(number);
        turn.arriveAndWait();
      }
      codes += ' ';
    }
    for (int i = behind; i < 1; ++i)
      turn.arriveAndWait();
    return codes;
  };
  std::string expected, ahead, behind;
  for (int i = 0; i < kRounds; ++i)
    expected += "11122 ";
  std::thread other([&] { behind = walk(1); });
  ahead = walk(0);
  other.join();
  EXPECT_EQ(ahead, expected);
  EXPECT_EQ(behind, expected);
}

} // namespace
} // namespace test
