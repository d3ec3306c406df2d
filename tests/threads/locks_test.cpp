// Locks between sessions of several threads and processes.
#include <atomic>
#include <cstdlib>
#include <future>
#include <thread>

#include "support/engines.h"

namespace test {
namespace {

using namespace vldb98;

constexpr std::chrono::milliseconds kShort{20};

struct Taking {
  const char *what;
  uint16_t client; ///< the one that is open
  std::function<int(Store &)> take;
};

const Taking kTable{"table", 1, [](Store &s) { return s.Lock(kSachkonto, nullptr, 0); }};
const Taking kTableByOtherKey{"table through another key", 1,
                              [](Store &s) { return s.Lock(fileNumber(kSachkonto, 1), nullptr, 0); }};
const Taking kTableOfClient2{"table of client 2", 2, kTable.take};
const Taking kOtherTable{"other table", 1, [](Store &s) { return s.Lock(kDebitor, nullptr, 0); }};
const Taking kArea{"area", 1, [](Store &s) { return s.Lock(kSachkonto, "Saldo", 0); }};
const Taking kText{"resource by text", 1, [](Store &s) { return s.LockRes(kSachkonto, 1, "7", 0, 0); }};
const Taking kNumber{"resource by number", 1, [](Store &s) { return s.LockRes(kSachkonto, 1, 7, 0, 0); }};
const Taking kOtherNumber{"other number", 1, [](Store &s) { return s.LockRes(kSachkonto, 1, 8, 0, 0); }};
const Taking kNumberOfClient2{"number of client 2", 2, [](Store &s) { return s.LockRes(kSachkonto, 2, 7, 0, 0); }};
const Taking kExtern{"resource from outside", 1, [](Store &s) { return s.LockResExtern("7", kSachkonto); }};
const Taking kExternByClient2{"the same by client 2", 2, kExtern.take};
const Taking kOfAll{"table of all clients", 1, [](Store &s) { return s.Lock(kFirmenstamm, nullptr, 0); }};
const Taking kOfAllByClient2{"the same by client 2", 2, kOfAll.take};
const Taking kRowOfAll{"resource of such a table", 1, [](Store &s) { return s.LockRes(kFirmenstamm, 1, 7, 0, 0); }};
const Taking kRowOfAllByClient2{"the same by client 2", 2,
                                [](Store &s) { return s.LockRes(kFirmenstamm, 2, 7, 0, 0); }};
const Taking kPass{"passing through", 1, [](Store &s) { return s.Lock(kSachkonto, nullptr, 1); }};
const Taking kSelector{"reading with a selector", 1, [](Store &s) {
                         DATENBANK record{};
                         uint8_t found;
                         return s.GetFirstExt(record, found, kSachkonto, ZELK_ENG_DEFAULT, 5);
                       }};
const Taking kPlainRead{"plain reading", 1, [](Store &s) {
                          DATENBANK record{};
                          uint8_t found;
                          return s.GetFirstExt(record, found, kSachkonto);
                        }};

class LockTest : public StoreTest {
protected:
  /// What another thread's session answers, waiting only briefly.
  bool elsewhere(const Taking &taking) {
    return std::async(std::launch::async,
                      [&] {
                        auto session = open(kShort);
                        uint8_t found;
                        return session && session->SetzeFista(taking.client, found) && taking.take(*session);
                      })
        .get();
  }
};

TEST_P(LockTest, ExcludeOthersFromTheSameThingOnly) {
  struct Row {
    const Taking &held, &wanted;
    bool had;
  };
  const Row rows[] = {{kTable, kTable, false},
                      {kTable, kTableByOtherKey, false},
                      {kTable, kTableOfClient2, true},
                      {kTable, kOtherTable, true},
                      {kTable, kNumber, true},
                      {kTable, kPass, false},
                      {kTable, kSelector, false},
                      {kTable, kPlainRead, true},
                      {kArea, kArea, false},
                      {kArea, kTable, true},
                      {kArea, kSelector, true},
                      {kText, kNumber, false},
                      {kNumber, kOtherNumber, true},
                      {kNumber, kNumberOfClient2, true},
                      {kNumber, kExtern, true},
                      {kNumber, kTable, true},
                      {kExtern, kExternByClient2, false},
                      {kOfAll, kOfAllByClient2, false},
                      {kOfAll, kRowOfAll, true},
                      {kRowOfAll, kRowOfAllByClient2, false},
                      {kPass, kTable, true},
                      {kSelector, kTable, true}};
  for (const Row &row : rows) {
    SCOPED_TRACE(std::string("held: ") + row.held.what + ", wanted: " + row.wanted.what);
    ASSERT_TRUE(row.held.take(*store));
    EXPECT_EQ(elsewhere(row.wanted), row.had);
    constexpr FileNumber held[] = {kSachkonto, kFirmenstamm};
    ASSERT_TRUE(store->Unlock(held, 1));
    EXPECT_FALSE(store->holdsLocks());
    EXPECT_TRUE(elsewhere(row.wanted)) << "after the release";
  }
}

TEST_P(LockTest, AreCounted) {
  ASSERT_TRUE(kTable.take(*store) && kTable.take(*store));
  // Passing through one's own lock neither waits nor counts.
  ASSERT_TRUE(kPass.take(*store));
  ASSERT_TRUE(store->Unlock(kSachkonto, 1));
  EXPECT_FALSE(elsewhere(kTable));
  ASSERT_TRUE(store->Unlock(kSachkonto, 1));
  EXPECT_TRUE(elsewhere(kTable));
  EXPECT_TRUE(store->Unlock(kSachkonto, 1)) << "nothing is held any more";
}

TEST_P(LockTest, WaitingEndsWhenTheHolderLetsGo) {
  for (const Taking *wanted : {&kTable, &kPass, &kSelector}) {
    SCOPED_TRACE(wanted->what);
    ASSERT_TRUE(kTable.take(*store));
    std::promise<void> waits;
    auto waiter = std::async(std::launch::async, [&] {
      auto session = open(std::chrono::seconds(60));
      waits.set_value();
      return session && wanted->take(*session);
    });
    waits.get_future().wait();
    EXPECT_FALSE(elsewhere(kTable)) << "the waiting one must not have taken it away";
    ASSERT_TRUE(store->Unlock(kSachkonto, 1));
    EXPECT_TRUE(waiter.get());
  }
}

TEST_P(LockTest, EndWithTheirSession) {
  {
    auto holder = open();
    ASSERT_TRUE(holder && kTable.take(*holder) && kNumber.take(*holder) && kExtern.take(*holder));
    // Also the sessions of one thread exclude each other.
    auto second = open(kShort);
    EXPECT_FALSE(kTable.take(*second));
  }
  for (const Taking *taking : {&kTable, &kNumber, &kExtern})
    EXPECT_TRUE(elsewhere(*taking)) << taking->what;
}

struct ChildFolder : Environment {
  void TestBody() override {}
  using Environment::folder;
};

ChildRole dyingHolder("die-with-locks", [](const std::string &engine) {
  ChildFolder child;
  auto holder = openBeside(engine, child.folder(), kShort);
  if (!holder || !kTable.take(*holder) || !kNumber.take(*holder) || !holder->Transaktion(1, 0)) return 1;
  DATENBANK record{};
  put(record.Sachkonto.Nr, "9999   ");
  if (!holder->Insert(record, kSachkonto)) return 2;
  // Held until here, though the parent cannot see it.
  auto other = openBeside(engine, child.folder(), kShort);
  if (!other || kTable.take(*other)) return 3;
  std::_Exit(42);
  return 0;
});

TEST_P(LockTest, EndWithTheirProcess) {
  ASSERT_EQ(runChild("die-with-locks", GetParam().name), 42);
  EXPECT_TRUE(kTable.take(*store));
  EXPECT_TRUE(kNumber.take(*store));
  // And so does what it had begun to write.
  uint8_t found;
  EXPECT_TRUE(store->Used(KeyBuilder().account("9999"), found, kSachkonto));
  EXPECT_FALSE(found);
  DATENBANK record{};
  put(record.Sachkonto.Nr, "9999   ");
  EXPECT_TRUE(store->Insert(record, kSachkonto));
}

TEST_P(LockTest, LetOneInAtATime) {
  constexpr int kThreads = 4, kRounds = 50;
  std::atomic<int> inside{0}, intrusions{0}, entered{0};
  auto work = [&] {
    auto session = open(std::chrono::seconds(60));
    for (int i = 0; session && i < kRounds; ++i) {
      if (!kTable.take(*session)) break;
      intrusions += inside.fetch_add(1) != 0;
      std::this_thread::yield();
      ++entered;
      --inside;
      session->Unlock(kSachkonto, 1);
    }
  };
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i)
    threads.emplace_back(work);
  for (std::thread &thread : threads)
    thread.join();
  EXPECT_EQ(intrusions, 0);
  EXPECT_EQ(entered, kThreads * kRounds);
}

// Without any lock of the store: what is read in a transaction before it is written, nobody else writes meanwhile.
TEST_P(LockTest, WritersWithoutLocksLoseNothing) {
  constexpr int kThreads = 4, kRounds = 25;
  DATENBANK term{};
  ASSERT_TRUE(store->Insert(term, kZahlziel));
  std::atomic<int> counted{0}, added{0};
  auto count = [](Store &session) {
    DATENBANK record{};
    uint8_t found = 0;
    bool done = session.UsedGet(record, KeyBuilder().number(int32_t(1)), found, kZahlziel) && found;
    record.Zahlziel.Zahltage = int16_t(record.Zahlziel.Zahltage + 1);
    return done && session.Update(record, kZahlziel);
  };
  auto work = [&] {
    auto session = open(std::chrono::seconds(60));
    for (int i = 0; session && i < kRounds; ++i) {
      ASSERT_TRUE(session->Transaktion(1, 0));
      const bool done = count(*session);
      if (session->Transaktion(done ? 2 : 4, 0) && done) ++counted;
      DATENBANK batch{};
      if (session->Insert(batch, kStapel)) ++added;
    }
  };
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i)
    threads.emplace_back(work);
  for (std::thread &thread : threads)
    thread.join();
  EXPECT_EQ(counted, kThreads * kRounds);
  EXPECT_EQ(added, kThreads * kRounds) << "each with a number of its own";
  uint8_t found;
  ASSERT_TRUE(store->UsedGet(term, KeyBuilder().number(int32_t(1)), found, kZahlziel) && found);
  EXPECT_EQ(int(term.Zahlziel.Zahltage), counted);
}

ZELK_ON_ALL_ENGINES(LockTest);

} // namespace
} // namespace test
