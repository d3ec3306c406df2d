// Connections that are lost while a posting is inserted, and others who are in its way.
#ifndef _WIN32 // where there is no proxy

#include <atomic>
#include <fstream>
#include <future>
#include <utility>

#include "odbc/odbc_connection.h"
#include "support/drafts.h"
#include "support/proxy.h"

namespace test {
namespace {

using namespace vldb98;
using Fate = Proxy::Fate;

bool isCommit(std::string_view command) {
  return command.find("COMMIT") != std::string_view::npos;
}

class ServerLoss : public Books {
protected:
  void SetUp() override {
    if (!onServer()) GTEST_SKIP() << "there is no server (tests/mariadb/with_server)";
    ServerSettings settings = serverDatabase();
    proxy = std::make_unique<Proxy>(settings.port);
    settings.port = proxy->port();
    ZELK_Detach();
    writeServerSettings(settings);
    ASSERT_TRUE(MFWritePrivateProfileString("ZELK", "Sperrwartezeit", "1000", nullptr));
    administrator = openOdbc(serverDatabase(), std::chrono::seconds(10), database);
    ASSERT_TRUE(administrator);
    // A session that has posted sends what each further posting sends.
    ASSERT_EQ(post("warm"), ZELK_OK);
    std::atomic<int> seen{0};
    proxy->judge([&](int, std::string_view command) {
      seen += isCommit(command);
      return Fate::Forward;
    });
    ASSERT_EQ(post("counted"), ZELK_OK);
    commands = proxy->commands();
    commits = seen;
    proxy->judge({});
  }

  static ZelkResult post(const std::string &document) {
    ZELK_BUCHUNG posting = validPosting();
    put(posting.Belegnummer, document);
    put(posting.DMSID, document);
    return ZELK_BuchungEinfuegen(&posting, 0);
  }

  /// How often a posting is stored, whole.
  int stored(const std::string &document) {
    int count = 0;
    for (const StoredPosting &posting : storedPostings(*session(), 1, 3)) {
      EXPECT_EQ(posting.lines.size(), 1u);
      count += posting.posting.Belegnummer == document;
    }
    return count;
  }

  /// Judges the last COMMIT of the next posting.
  void judgeCommit(std::function<Fate()> judge) {
    proxy->judge([this, judge, seen = 0](int, std::string_view command) mutable {
      return isCommit(command) && ++seen == commits ? judge() : Fate::Forward;
    });
  }

  std::string protocol() const {
    std::ifstream file(folder() / "programm" / "ZELKPROT.TXT", std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  std::unique_ptr<Proxy> proxy;
  std::unique_ptr<SqlConnection> administrator;
  std::string database;
  int commands = 0, commits = 0; ///< of one posting
};

TEST_F(ServerLoss, SettlesACommitWithoutAnAnswer) {
  const struct {
    const char *document;
    Fate fate;
    bool unreachable; ///< afterwards
    ZelkResult result;
    int stored;
  } rows[] = {{"after", Fate::CutAfter, false, ZELK_OK, 1},
              {"before", Fate::CutBefore, false, ZELKERR_Datenbank, 0},
              {"held", Fate::Hold, false, ZELKERR_Datenbank, 0},
              {"after, alone", Fate::CutAfter, true, ZELKERR_Datenbank, 1},
              {"before, alone", Fate::CutBefore, true, ZELKERR_Datenbank, 0}};
  ASSERT_EQ(ZELK_ProtokollStart(), ZELK_OK);
  for (const auto &row : rows) {
    SCOPED_TRACE(row.document);
    const std::string before = protocol();
    judgeCommit([&] {
      proxy->refuse(row.unreachable);
      return row.fate;
    });
    EXPECT_EQ(post(row.document), row.result);
    proxy->judge({});
    proxy->refuse(false);
    proxy->release();
    EXPECT_EQ(stored(row.document), row.stored);
    const std::string added = protocol().substr(before.size());
    const size_t unknown = added.find(std::string("Belegnummer: ") + row.document + ", Kennung: 0");
    EXPECT_EQ(unknown != std::string::npos, row.unreachable) << added;
    auto other = session(std::chrono::milliseconds(0));
    EXPECT_TRUE(nothingLocked(*other, 1));
    // What is not stored may be inserted again, and what is stored leaves nothing in the way.
    EXPECT_EQ(post(row.stored ? "next" : row.document), ZELK_OK);
    EXPECT_EQ(stored(row.document), 1);
  }
  EXPECT_EQ(stored("next"), 2);
}

// A transaction that the server keeps open, and whose session it cannot be told to end, since nothing tells it.
TEST_F(ServerLoss, WaitsForATransactionThatIsStillOpen) {
  for (const bool arrives : {true, false}) {
    SCOPED_TRACE(arrives ? "its COMMIT arrives in time" : "too late");
    DatabaseSettings settings;
    settings.server = serverDatabase();
    settings.server.port = proxy->port();
    settings.openServer = openOdbc;
    settings.lockWait = std::chrono::seconds(arrives ? 60 : 1);
    auto store = openSession(settings);
    uint8_t found = 0;
    ASSERT_TRUE(store && store->SetzeFista(1, found) && found && store->MemInsertSplit({}));
    proxy->judge([held = false](int, std::string_view command) mutable {
      return isCommit(command) && !std::exchange(held, true) ? Fate::Hold : Fate::Forward;
    });
    std::atomic<bool> over{false};
    std::future<void> arriving;
    if (arrives)
      arriving = std::async(std::launch::async, [&] {
        // An insertion that takes so long waits for a row.
        auto waiting = administrator->prepare("SELECT 1 FROM information_schema.processlist WHERE db=DATABASE() AND "
                                              "info LIKE 'INSERT%' AND time_ms>200");
        while (!over && waiting->step() != Step::Row)
          waiting->reset();
        waiting->reset();
        proxy->release();
      });
    BATCHBUCHUNG posting{};
    posting.Stapel = 3;
    put(posting.Belegnummer, arrives ? "in time" : "too late");
    EXPECT_EQ(store->InsertBat(posting) != 0, arrives);
    over = true;
    EXPECT_EQ(store->outcomeUnknown(), !arrives);
    if (arrives) arriving.get();
    proxy->judge({});
    proxy->release();
    EXPECT_EQ(stored(arrives ? "in time" : "too late"), 1);
  }
}

// Before any statement of a posting, its connection is ended by somebody else, or its end does not reach the server.
TEST_F(ServerLoss, LeavesNothingHalfDoneWhereverItHappens) {
  int went = 0;
  for (int n = 1; n <= 2 * commands; ++n) {
    const bool noticed = n <= commands;
    SCOPED_TRACE("command " + std::to_string(n) + " of " + std::to_string(commands));
    const std::string document = "n" + std::to_string(n);
    proxy->judge([this, noticed, at = noticed ? n : n - commands](int number, std::string_view) {
      if (number != at) return Fate::Forward;
      if (noticed) endOtherConnections(*administrator);
      return noticed ? Fate::Forward : Fate::Hold;
    });
    const ZelkResult result = post(document);
    proxy->judge({});
    EXPECT_TRUE(result == ZELK_OK || result == ZELKERR_Datenbank) << result;
    went += result == ZELK_OK;
    EXPECT_EQ(stored(document), result == ZELK_OK);
    EXPECT_EQ(post("next"), ZELK_OK);
    EXPECT_EQ(stored("next"), n) << "skipped";
    proxy->release();
    EXPECT_EQ(stored(document), result == ZELK_OK);
    auto other = session(std::chrono::milliseconds(0));
    EXPECT_TRUE(nothingLocked(*other, 1));
  }
  EXPECT_LT(went, commands);
}

class ServerObstacles : public ServerLoss {
protected:
  /// Posts while somebody stands in the way. \param undone called after each attempt that came to nothing
  ZelkResult postAgainst(const std::string &document, std::function<void(int attempts)> undone) {
    attempts = 0;
    proxy->judge([this, undone](int, std::string_view command) {
      if (command.find("ROLLBACK") != std::string_view::npos) undone(++attempts);
      return Fate::Forward;
    });
    const ZelkResult result = post(document);
    proxy->judge({});
    auto other = session(std::chrono::milliseconds(0));
    EXPECT_TRUE(nothingLocked(*other, 1));
    return result;
  }

  /// A posting changes the record of its batch only when it is the first.
  void emptyBatch() {
    auto other = session();
    uint8_t found = 0;
    ASSERT_TRUE(other->SetzeFista(1, found) && found && other->EmptyBat(3));
  }

  std::atomic<int> attempts{0}; ///< that came to nothing
};

// The server's errors as it makes them itself, at each table that an insertion writes.
TEST_F(ServerObstacles, AreMetOnceMore) {
  const struct {
    int error, times; ///< so many times the statement fails
    ZelkResult result;
    int attempts;
  } rows[] = {{1213, 1, ZELK_OK, 1}, {1205, 2, ZELK_OK, 2},           {1020, 1, ZELK_OK, 1},
              {1020, 2, ZELK_OK, 2}, {1213, 9, ZELKERR_Datenbank, 3}, {1644, 1, ZELKERR_Datenbank, 1}};
  int posted = 0;
  for (const char *event :
       {"INSERT ON \"DmsId\"", "INSERT ON \"Batchbuchung\"", "INSERT ON \"Split\"", "UPDATE ON \"Stapel\""})
    for (const auto &row : rows) {
      const std::string document = "e" + std::to_string(++posted);
      SCOPED_TRACE(std::string(event) + ", error " + std::to_string(row.error) + " times " + std::to_string(row.times));
      // The document is a new one, so that all of it is written.
      emptyBatch();
      const std::string before = dump(*session(), 1, {kStapel, kBatchbuchung, kSplit, kKobu});
      ASSERT_TRUE(administrator->execute(std::string("CREATE TRIGGER obstacle BEFORE ") + event +
                                         " FOR EACH ROW BEGIN IF COALESCE(@met,0)<" + std::to_string(row.times) +
                                         " THEN SET @met=COALESCE(@met,0)+1; SIGNAL SQLSTATE '40001' SET MYSQL_ERRNO=" +
                                         std::to_string(row.error) + "; END IF; END"));
      ZELK_Detach(); // what was met counts by connection
      EXPECT_EQ(postAgainst(document, [](int) {}), row.result);
      EXPECT_EQ(attempts, row.attempts);
      EXPECT_TRUE(administrator->execute("DROP TRIGGER obstacle"));
      EXPECT_EQ(stored(document), row.result == ZELK_OK);
      if (row.result != ZELK_OK) {
        EXPECT_EQ(dump(*session(), 1, {kStapel, kBatchbuchung, kSplit, kKobu}), before);
      }
    }
}

// As a cluster answers when another node was first.
TEST_F(ServerObstacles, AreMetAtTheCommit) {
  for (const bool always : {false, true}) {
    SCOPED_TRACE(always ? "always" : "once");
    const std::string document = always ? "always" : "once";
    std::atomic<int> undone{0};
    proxy->judge([&, seen = 0](int, std::string_view command) mutable {
      undone += command.find("ROLLBACK") != std::string_view::npos;
      return isCommit(command) && (++seen == commits || always) ? Fate::Deadlock : Fate::Forward;
    });
    EXPECT_EQ(post(document), always ? ZELKERR_Datenbank : ZELK_OK);
    proxy->judge({});
    EXPECT_EQ(undone, always ? 3 : 1);
    EXPECT_EQ(stored(document), !always);
    auto other = session(std::chrono::milliseconds(0));
    EXPECT_TRUE(nothingLocked(*other, 1));
  }
}

// A row that somebody else keeps.
TEST_F(ServerObstacles, AreWaitedForInTime) {
  for (int leaves : {0, 1, 2}) { // after so many attempts; 0: never
    SCOPED_TRACE(leaves);
    const std::string document = "w" + std::to_string(leaves);
    emptyBatch();
    ASSERT_TRUE(administrator->execute("START TRANSACTION"));
    ASSERT_TRUE(administrator->execute("UPDATE \"Stapel\" SET \"Name\"='x' WHERE \"Mandant\"=1 AND \"Nr\"=3"));
    auto undone = [&](int attempt) {
      if (attempt == leaves) administrator->execute("ROLLBACK");
    };
    EXPECT_EQ(postAgainst(document, undone), leaves ? ZELK_OK : ZELKERR_Datenbank);
    EXPECT_EQ(attempts, leaves ? leaves : 3);
    EXPECT_TRUE(administrator->execute("ROLLBACK"));
    EXPECT_EQ(stored(document), leaves > 0);
  }
}

// Somebody who writes more, and so is the one that the server lets go on, holds the batch and wants the new posting.
TEST_F(ServerObstacles, AreNotDeadlocks) {
  emptyBatch();
  ASSERT_TRUE(administrator->begin(false));
  ASSERT_TRUE(administrator->execute("UPDATE \"Stapel\" SET \"Name\"='x' WHERE \"Mandant\"=1 AND \"Nr\"=3"));
  ASSERT_TRUE(administrator->execute("INSERT INTO \"Benutzer\" (\"Mandant\",\"Nr\",\"Name\") SELECT 9,seq,'' FROM "
                                     "seq_1_to_200"));
  std::atomic<bool> over{false};
  auto crossing = std::async(std::launch::async, [&] {
    bool went = true;
    while (went && !over)
      went = administrator->execute("SELECT 1 FROM \"Batchbuchung\" WHERE \"Mandant\"=1 AND \"Stapel\"=3 FOR UPDATE");
    return administrator->rollback() && went;
  });
  EXPECT_EQ(postAgainst("deadlock",
                        [&](int) {
                          over = true;
                          crossing.wait();
                        }),
            ZELK_OK);
  over = true;
  EXPECT_TRUE(crossing.get());
  EXPECT_EQ(attempts, 1);
  EXPECT_EQ(stored("deadlock"), 1);
}

// What a cluster answers, and a server where the isolation is a snapshot's.
TEST_F(ServerObstacles, MayBeRowsThatHaveChanged) {
  auto first = openOdbc(serverDatabase(), std::chrono::seconds(10), database);
  ASSERT_TRUE(first && first->execute("SET SESSION TRANSACTION ISOLATION LEVEL REPEATABLE READ") &&
              first->execute("SET SESSION innodb_snapshot_isolation=ON") && first->begin(false));
  const std::string change = "UPDATE \"Stapel\" SET \"Sperre\"=\"Sperre\"+1 WHERE \"Mandant\"=1 AND \"Nr\"=3";
  ASSERT_TRUE(first->execute("SELECT * FROM \"Stapel\"") && administrator->execute(change));
  EXPECT_FALSE(first->execute(change));
  EXPECT_EQ(first->failure(), Failure::Retry);
  EXPECT_FALSE(first->inTransaction());
}

} // namespace
} // namespace test

#endif
