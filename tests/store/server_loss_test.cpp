// Connections that are lost while a posting is inserted, and others who are in its way.
#ifndef _WIN32 // where there is no proxy

#include <atomic>
#include <fstream>
#include <future>

#include "odbc/odbc_connection.h"
#include "platform/system.h"
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

  /// Ends all connections of the library.
  void endConnections() {
    auto others = administrator->prepare("SELECT id FROM information_schema.processlist WHERE db=DATABASE() AND "
                                         "id<>CONNECTION_ID()");
    std::vector<std::string> ids;
    while (others->step() == Step::Row)
      ids.push_back(std::to_string(others->integer(0)));
    others->reset();
    for (const std::string &id : ids)
      administrator->execute("KILL " + id);
    // They are gone when the server has noticed.
    for (bool left = true; left; others->reset())
      left = others->step() == Step::Row;
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
  } rows[] = {{"behind", Fate::CutBehind, false, ZELK_OK, 1},
              {"before", Fate::CutBefore, false, ZELKERR_Datenbank, 0},
              {"behind, alone", Fate::CutBehind, true, ZELKERR_Datenbank, 1},
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
    EXPECT_EQ(stored(row.document), row.stored);
    const std::string added = protocol().substr(before.size());
    const size_t unknown = added.find(std::string("Belegnummer: ") + row.document + ", Kennung: 0");
    EXPECT_EQ(unknown != std::string::npos, row.unreachable) << added;
    auto other = session(std::chrono::milliseconds(0));
    EXPECT_TRUE(nothingLocked(*other, 1));
    EXPECT_EQ(post("next"), ZELK_OK);
  }
  EXPECT_EQ(stored("next"), int(std::size(rows)));
}

// Between any two statements of a posting, its connection is ended by somebody else.
TEST_F(ServerLoss, LeavesNothingHalfDoneWhereverItHappens) {
  int went = 0;
  for (int n = 1; n <= commands; ++n) {
    SCOPED_TRACE("command " + std::to_string(n));
    const std::string document = "n" + std::to_string(n);
    proxy->judge([&](int number, std::string_view) {
      if (number == n) endConnections();
      return Fate::Forward;
    });
    const ZelkResult result = post(document);
    proxy->judge({});
    EXPECT_TRUE(result == ZELK_OK || result == ZELKERR_Datenbank) << result;
    went += result == ZELK_OK;
    EXPECT_EQ(stored(document), result == ZELK_OK);
    auto other = session(std::chrono::milliseconds(0));
    EXPECT_TRUE(nothingLocked(*other, 1));
    other.reset();
    EXPECT_EQ(post("next"), ZELK_OK);
  }
  EXPECT_EQ(stored("next"), commands);
  EXPECT_LT(went, commands);
}

} // namespace
} // namespace test

#endif
