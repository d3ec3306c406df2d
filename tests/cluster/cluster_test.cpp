// The same books on three nodes of a cluster: nothing mixes, nothing is lost, whichever node a writer is at.
#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <future>
#include <map>
#include <mutex>
#include <set>
#include <sstream>
#include <stdexcept>
#include <thread>

#include "isam/server_engine.h"
#include "odbc/odbc_connection.h"
#include "support/drafts.h"
#include "support/process.h"

namespace test {
namespace {

using namespace vldb98;

constexpr int kPerWriter = 20;
constexpr int kAttempts = 1000; ///< of a posting that others are in the way of

std::vector<int> nodeProcesses() {
  const char *list = std::getenv("ZELK_TEST_CLUSTER");
  std::istringstream text(list ? list : "");
  std::vector<int> ids;
  for (int id; text >> id;)
    ids.push_back(id);
  return ids;
}

/// The nodes that run, in the order of the hosts.
std::vector<ServerSettings> nodes() {
  std::vector<ServerSettings> running;
  const std::vector<int> ids = nodeProcesses();
  const std::vector<ServerSettings> all = eachHost(serverDatabase());
  for (size_t i = 0; i < all.size() && i < ids.size(); ++i)
    if (processRuns(ids[i])) running.push_back(all[i]);
  return running;
}

std::unique_ptr<Store> opened(std::unique_ptr<Store> store) {
  uint8_t found = 0;
  return store && store->SetzeFista(1, found) && found ? std::move(store) : nullptr;
}

/// A session at one node, with client 1 open.
std::unique_ptr<Store> at(const ServerSettings &node) {
  DatabaseSettings settings;
  settings.server = node;
  settings.openServer = openOdbc;
  settings.lockWait = std::chrono::milliseconds(0);
  return opened(openSession(settings));
}

/// The same where the server has no named locks.
std::unique_ptr<Store> withRowsAlone(const ServerSettings &node) {
  std::string database;
  auto connection = openOdbc(node, std::chrono::seconds(1), database);
  if (!connection) return nullptr;
  auto locks = openClusterLocks(*connection, nullptr, std::chrono::milliseconds(0));
  if (!locks) return nullptr;
  return opened(std::make_unique<Store>(std::make_unique<ServerEngine>(std::move(connection), std::move(locks))));
}

/// Posts under a document number, again and again while others are in the way.
ZelkResult post(const std::string &number) {
  ZELK_BUCHUNG posting = validPosting();
  put(posting.Belegnummer, number);
  ZelkResult result = ZELKERR_Datenbank;
  for (int attempt = 0; attempt < kAttempts && result == ZELKERR_Datenbank; ++attempt)
    result = ZELK_BuchungEinfuegen(&posting, 0);
  return result;
}

struct ChildBooks : Environment {
  void TestBody() override {}
};

ChildRole poster("post at a node", [](const std::string &argument) {
  ChildBooks books;
  const ServerSettings node = nodes().at(size_t(argument[0] - '1'));
  if (ZELK_SQLInit(2, 0, node.host.c_str(), nullptr, nullptr, node.port, nullptr, nullptr) != ZELK_OK) return 255;
  for (int i = 1; i <= kPerWriter; ++i)
    if (const ZelkResult result = post(argument + "-" + std::to_string(i)); result != ZELK_OK) return -result;
  return 0;
});

class Cluster : public Environment {
protected:
  void SetUp() override {
    if (nodeProcesses().empty()) GTEST_SKIP() << "there is no cluster (tests/mariadb/with_cluster)";
    ASSERT_GE(nodes().size(), 2u);
    provision();
    load("musterhandel");
    for (const ServerSettings &node : nodes())
      catchUp(node);
  }

  /// Waits until a node has what the others reported as done so far.
  static void catchUp(const ServerSettings &node) {
    std::string ignored;
    auto connection = openOdbc(node, std::chrono::seconds(60), ignored);
    ASSERT_TRUE(connection && connection->execute("SET SESSION wsrep_sync_wait=1") &&
                connection->execute("SELECT COUNT(*) FROM \"Sperre\""));
  }

  /// How often each document number is in the batch at a node. The postings' own numbers must have no gap.
  static std::map<std::string, int> numbersAt(const ServerSettings &node) {
    std::map<std::string, int> numbers;
    catchUp(node);
    auto store = at(node);
    if (!store) throw std::runtime_error("a node of the cluster cannot be reached");
    int32_t next = 1;
    for (const StoredPosting &stored : storedPostings(*store, 1, 3)) {
      EXPECT_EQ(int(stored.posting.Nr), next++);
      EXPECT_EQ(stored.lines.size(), 1u);
      ++numbers[stored.posting.Belegnummer];
    }
    return numbers;
  }
};

TEST_F(Cluster, EveryPostingIsThereOnceAtAllNodes) {
  std::vector<std::string> writers = {"1A", "1B", "2A"};
  if (nodes().size() == 3) writers.push_back("3A");
  std::vector<std::future<int>> children;
  std::map<std::string, int> expected;
  for (const std::string &writer : writers) {
    children.push_back(std::async(std::launch::async, [writer] { return runChild("post at a node", writer); }));
    for (int i = 1; i <= kPerWriter; ++i)
      expected[writer + "-" + std::to_string(i)] = 1;
  }
  for (auto &child : children)
    EXPECT_EQ(child.get(), 0);
  for (const ServerSettings &node : nodes()) {
    EXPECT_EQ(numbersAt(node), expected);
  }
}

TEST_F(Cluster, WhatWasCheckedStillHoldsWhenItIsWritten) {
  ASSERT_EQ(post("1"), ZELK_OK);
  std::string ignored;
  auto holder = openOdbc(nodes()[0], std::chrono::seconds(10), ignored);
  auto watcher = openOdbc(nodes()[0], std::chrono::seconds(10), ignored);
  auto waiting = watcher->prepare("SELECT 1 FROM information_schema.processlist WHERE INFO LIKE 'UPDATE \"Sperre\"%'");
  // Stops the posting where it has checked everything and is about to write.
  ASSERT_TRUE(holder->begin(false));
  ASSERT_TRUE(holder->execute("SELECT * FROM \"Sperre\" WHERE \"Mandant\"=1 AND \"Tabelle\"=0 FOR UPDATE"));
  ZELK_BUCHUNG posting = validPosting();
  auto result = std::async(std::launch::async, [&] { return ZELK_BuchungEinfuegen(&posting, 0); });
  while (waiting->step() == Step::Done)
    waiting->reset();
  auto other = at(nodes()[1]);
  DATENBANK record{};
  uint8_t found = 0;
  ASSERT_TRUE(other && other->Lock(kSachkonto, nullptr, 0));
  ASSERT_TRUE(other->UsedGet(record, KeyBuilder().account("1000"), found, kSachkonto) && found);
  record.Sachkonto.Gesperrt = 1;
  ASSERT_TRUE(other->Update(record, kSachkonto));
  const ZelkResult refused = result.get();
  EXPECT_TRUE(refused < 0 && refused != ZELKERR_Datenbank)
      << refused << ": the account was open when it was looked at first";
  EXPECT_EQ(numbersAt(nodes()[0]).size(), 1u);
  EXPECT_EQ(ZELK_BuchungEinfuegen(&posting, 0), refused);
}

struct Meeting {
  const char *what;
  bool inside; ///< the first one locks inside its transaction
  FileNumber locks;
  bool writes, insideToo;
  bool firstGoes; ///< the other one always does
};

DATENBANK account(const std::string &number) {
  DATENBANK record{};
  put(record.Sachkonto.Nr, number + std::string(7 - number.size(), ' '));
  return record;
}

class LockRows : public Cluster, public ::testing::WithParamInterface<const char *> {};

TEST_P(LockRows, LetOneOfTwoWritersFail) {
  static constexpr Meeting meetings[] = {{"changed since it was locked", false, kSachkonto, true, true, false},
                                         {"changed outside a transaction", false, kSachkonto, true, false, false},
                                         {"changed while the first one writes", true, kSachkonto, true, true, false},
                                         {"locked and let go", false, kSachkonto, false, false, true},
                                         {"another table", false, kDebitor, true, true, true},
                                         {"another table inside", true, kDebitor, true, false, true}};
  const bool rowsAlone = std::string(GetParam()) == "RowsAlone";
  const ServerSettings here = nodes()[0], there = rowsAlone ? here : nodes()[1];
  auto first = rowsAlone ? withRowsAlone(here) : at(here), other = rowsAlone ? withRowsAlone(there) : at(there);
  ASSERT_TRUE(first && other);
  // Making the rows is a change of its own, which others could meet.
  for (FileNumber table : {kSachkonto, kKreditor, kDebitor})
    ASSERT_TRUE(other->Lock(table, nullptr, 0) && other->Unlock(table, 0));
  catchUp(here);
  int number = 0;
  for (const Meeting &meeting : meetings) {
    SCOPED_TRACE(meeting.what);
    DATENBANK own = account("81" + std::to_string(++number)), foreign = account("91" + std::to_string(number));
    uint8_t found = 0;
    ASSERT_TRUE(!meeting.inside || first->Transaktion(1, 0));
    ASSERT_TRUE(first->Lock(kSachkonto, nullptr, 0));
    ASSERT_TRUE(!meeting.insideToo || other->Transaktion(1, 0));
    // On one node, who is late waits, and in vain writes nothing.
    const bool waits = rowsAlone && meeting.inside && meeting.locks == kSachkonto;
    ASSERT_TRUE(other->Lock(meeting.locks, nullptr, 0));
    if (meeting.writes) {
      ASSERT_EQ(bool(other->Insert(foreign, kSachkonto)), !waits);
    }
    ASSERT_EQ(!meeting.insideToo || other->Transaktion(2, 0), !waits);
    other->Unlock(meeting.locks, 0);

    bool goes = (meeting.inside || first->Transaktion(1, 0)) && first->Insert(own, kSachkonto);
    while (first->transactionDepth() > 0)
      goes = first->Transaktion(goes ? 2 : 4, 0) && goes;
    EXPECT_EQ(goes, meeting.firstGoes || waits);
    ASSERT_TRUE(first->usable() && first->Used(KeyBuilder().account("81" + std::to_string(number)), found, kSachkonto));
    EXPECT_EQ(bool(found), goes);
    first->Unlock(kSachkonto, 0);
    // Who takes the lock anew goes on.
    ASSERT_TRUE(first->Lock(kSachkonto, nullptr, 0));
    EXPECT_EQ(bool(first->Insert(own, kSachkonto)), !goes);
    // And again while the lock is held on, also after a transaction that came to nothing, and with a lock out of it.
    DATENBANK more = account("71" + std::to_string(number));
    ASSERT_TRUE(first->Transaktion(1, 0) && first->Lock(kKreditor, nullptr, 0));
    ASSERT_TRUE(first->Insert(more, kSachkonto) && first->Transaktion(4, 0));
    ASSERT_TRUE(other->Lock(kKreditor, nullptr, 0));
    EXPECT_TRUE(first->Insert(more, kSachkonto));
    DATENBANK late = account("61" + std::to_string(number));
    EXPECT_FALSE(other->Insert(late, kSachkonto));
    for (FileNumber table : {kSachkonto, kKreditor}) {
      first->Unlock(table, 0);
      other->Unlock(table, 0);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Locks, LockRows, ::testing::Values("TwoNodes", "RowsAlone"),
                         [](const auto &way) { return std::string(way.param); });

TEST_F(Cluster, PostingGoesOnWhenTheNodeInUseDies) {
  if (nodes().size() < 3) GTEST_SKIP() << "two nodes of three must stay";
  // What becomes of a COMMIT is known when the nodes that are left have agreed that they are the majority.
  ZELK_Detach();
  ASSERT_TRUE(MFWritePrivateProfileString("ZELK", "Sperrwartezeit", "60000", nullptr));
  constexpr int kWriters = 3, kBefore = 10, kAfterwards = 10;
  std::mutex mutex;
  std::set<std::string> acknowledged, refused;
  std::atomic<bool> killed{false};
  std::promise<void> enough;
  auto write = [&](const std::string &writer) {
    int afterwards = 0;
    for (int i = 1; afterwards < kAfterwards && i < kAttempts; ++i) {
      ZELK_BUCHUNG posting = validPosting();
      const std::string number = writer + "-" + std::to_string(i);
      put(posting.Belegnummer, number);
      const bool after = killed;
      const ZelkResult result = ZELK_BuchungEinfuegen(&posting, 0);
      std::lock_guard guard(mutex);
      EXPECT_TRUE(result == ZELK_OK || result == ZELKERR_Datenbank) << result;
      (result == ZELK_OK ? acknowledged : refused).insert(number);
      if (after && result == ZELK_OK) ++afterwards;
      if (result == ZELK_OK && acknowledged.size() == kBefore) enough.set_value();
    }
    EXPECT_EQ(afterwards, kAfterwards);
  };
  std::vector<std::thread> threads;
  for (int i = 0; i < kWriters; ++i)
    threads.emplace_back(write, std::string(1, char('A' + i)));
  enough.get_future().wait();
  endProcess(nodeProcesses().front());
  killed = true;
  for (std::thread &thread : threads)
    thread.join();
  EXPECT_FALSE(processRuns(nodeProcesses().front()));

  const auto stored = numbersAt(nodes().front());
  for (const std::string &number : acknowledged)
    EXPECT_EQ(stored.count(number), 1u) << number << " is lost";
  for (const std::string &number : refused)
    EXPECT_EQ(stored.count(number), 0u) << number << " was said not to be stored";
  for (const auto &[number, count] : stored)
    EXPECT_EQ(count, 1) << number << " is doubled";
}

} // namespace
} // namespace test
