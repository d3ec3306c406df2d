// What only a server can do to the books: refuse a connection, lose one, let several write at once.
#include <fstream>
#include <future>

#include "isam/statements.h"
#include "odbc/odbc_connection.h"
#include "support/engines.h"

namespace test {
namespace {

using namespace vldb98;

std::unique_ptr<SqlConnection> administrator() {
  std::string ignored;
  return openOdbc(serverDatabase(), std::chrono::seconds(10), ignored);
}

class Server : public Books {
protected:
  void SetUp() override {
    if (!onServer()) GTEST_SKIP() << "there is no server (tests/mariadb/with_server)";
  }
};

TEST_F(Server, IsReachedAsTheHostSays) {
  const ServerSettings good = eachHost(serverDatabase()).front();
  std::string password = good.password.reveal();
  const std::string second = "127.0.0.1:1, " + good.host + ":" + std::to_string(good.port);
  const char *host = good.host.c_str(), *user = good.user.c_str(), *right = password.c_str();
  const struct {
    const char *what;
    int32_t engine;
    const char *host, *user, *password;
    int32_t port;
    const char *extra, *database;
    ZelkResult result;
  } rows[] = {
      {"all given", 2, host, user, right, good.port, "", good.database.c_str(), ZELK_OK},
      {"wrong password", 2, host, user, "falsch", good.port, "", good.database.c_str(), ZELKERR_Verbindungsfehler},
      {"empty password", 2, host, user, "", good.port, "", good.database.c_str(), ZELKERR_Verbindungsfehler},
      {"unknown user", 2, host, "niemand", right, good.port, "", good.database.c_str(), ZELKERR_Verbindungsfehler},
      {"nobody listens", 2, host, user, right, 1, "", good.database.c_str(), ZELKERR_Verbindungsfehler},
      {"unknown host", 2, "host.invalid", user, right, good.port, "", good.database.c_str(), ZELKERR_Verbindungsfehler},
      {"unknown database", 2, host, user, right, good.port, "", "gibt_es_nicht", ZELKERR_Verbindungsfehler},
      {"the second of several", 2, second.c_str(), user, right, 1, "", good.database.c_str(), ZELK_OK},
      {"unknown driver", 2, host, user, right, good.port, "DRIVER={keiner}", good.database.c_str(),
       ZELKERR_Verbindungsfehler},
      {"an option more", 2, host, user, right, good.port, "INTERACTIVE=1;", good.database.c_str(), ZELK_OK},
      {"everything from the settings", 0, nullptr, nullptr, nullptr, 0, nullptr, nullptr, ZELK_OK},
      {"the rest from the settings", 2, "", "", "", -5, "", good.database.c_str(), ZELK_OK},
      {"another engine has no settings", 3, "", "", "", 0, "", "", ZELKERR_Verbindungsfehler}};
  ASSERT_EQ(ZELK_ProtokollStart(), ZELK_OK);
  for (const auto &row : rows) {
    SCOPED_TRACE(row.what);
    EXPECT_EQ(ZELK_SQLInit(row.engine, 0, row.host, row.user, row.password, row.port, row.extra, row.database),
              row.result);
    EXPECT_EQ(ZELK_GetUsedEngine(), 2);
    EXPECT_EQ(ZELK_InitHoleMandant(), ZELK_OK) << "the former connection is kept";
  }
  ASSERT_EQ(ZELK_ProtokollEnde(), ZELK_OK);
  std::ifstream file(folder() / "programm" / "ZELKPROT.TXT", std::ios::binary);
  const std::string protocol{std::istreambuf_iterator<char>(file), {}};
  EXPECT_NE(protocol.find("Passwort: gegeben"), std::string::npos);
  EXPECT_EQ(protocol.find(password), std::string::npos);
  EXPECT_EQ(protocol.find("falsch"), std::string::npos);
}

TEST_F(Server, AsksForWhatIsMissingOnlyWithADialog) {
  ServerSettings good = serverDatabase();
  writeServerSettings({});
  ZELK_Detach();
  const std::string password = good.password.reveal();
  auto connect = [&](int32_t dialog, std::vector<std::string> answers) {
    recorder.inputs = std::move(answers);
    return ZELK_SQLInit(2, dialog, good.host.c_str(), "", nullptr, good.port, "", "");
  };
  EXPECT_EQ(connect(0, {good.user, password, good.database}), ZELKERR_Verbindungsfehler);
  EXPECT_EQ(recorder.takeText(), "");
  EXPECT_EQ(connect(1, {good.user, password}), 0) << "cancelled at the last question";
  EXPECT_EQ(recorder.takeText(), "Benutzer: | Passwort: | Datenbank:");
  EXPECT_EQ(connect(1, {good.user, "falsch", good.database}), ZELKERR_Verbindungsfehler);
  EXPECT_EQ(ZELK_GetUsedEngine(), 1);
  EXPECT_EQ(connect(1, {good.user, password, good.database}), ZELK_OK);
  EXPECT_EQ(ZELK_GetUsedEngine(), 2);
  EXPECT_EQ(ZELK_InitHoleMandant(), ZELK_OK);
}

TEST_F(Server, LosesNothingWithItsConnection) {
  ZELK_BUCHUNG posting = validPosting();
  ASSERT_EQ(ZELK_BuchungEinfuegen(&posting, 0), ZELK_OK);
  endOtherConnections(*administrator());
  EXPECT_EQ(ZELK_BuchungEinfuegen(&posting, 0), ZELKERR_Datenbank) << "neither skipped nor stored";
  EXPECT_EQ(ZELK_BuchungEinfuegen(&posting, 0), ZELK_OK);
  EXPECT_EQ(postingsOf(1, 3).size(), 2u);

  auto store = session();
  uint8_t found;
  ASSERT_TRUE(store && store->SetzeFista(1, found) && found);
  const std::string before = dump(*session(), 1, {kStapel});
  ASSERT_TRUE(store->Transaktion(1, 0) && store->Lock(kStapel, nullptr, 0));
  DATENBANK batch{};
  ASSERT_TRUE(store->Insert(batch, kStapel));
  endOtherConnections(*administrator());
  EXPECT_TRUE(store->usable());
  EXPECT_FALSE(store->Insert(batch, kStapel));
  EXPECT_FALSE(store->usable());
  EXPECT_FALSE(store->Transaktion(2, 0));
  EXPECT_FALSE(store->Lock(kDebitor, nullptr, 0));
  auto other = session(std::chrono::milliseconds(0));
  EXPECT_EQ(dump(*other, 1, {kStapel}), before);
  EXPECT_TRUE(nothingLocked(*other, 1));
}

TEST_F(Server, UndoesTheWholeOfATransactionThatDeadlocks) {
  auto first = session(), second = session();
  for (Store *store : {first.get(), second.get()}) {
    uint8_t found;
    ASSERT_TRUE(store->SetzeFista(1, found) && found && store->Transaktion(1, 0));
  }
  auto rename = [](Store &store, int32_t number, const char *name) {
    DATENBANK record{};
    uint8_t found = 0;
    if (!store.UsedGet(record, KeyBuilder().number(number), found, kStapel) || !found) return false;
    put(record.Stapel.Name, name);
    return store.Update(record, kStapel) != 0;
  };
  ASSERT_TRUE(rename(*first, 1, "eins") && rename(*second, 3, "zwei"));
  auto crossing = std::async(std::launch::async, [&] { return rename(*first, 3, "eins"); });
  const bool secondWent = rename(*second, 1, "zwei"), firstWent = crossing.get();
  EXPECT_NE(firstWent, secondWent);
  EXPECT_EQ(bool(first->Transaktion(2, 0)), firstWent);
  EXPECT_EQ(bool(second->Transaktion(2, 0)), secondWent);
  const std::string batches = dump(*session(), 1, {kStapel});
  EXPECT_EQ(batches.find("eins") != std::string::npos, firstWent);
  EXPECT_EQ(batches.find("zwei") != std::string::npos, secondWent);
}

// So that a server which is several can split them by client.
TEST_F(Server, LeadsEveryIndexByTheClient) {
  auto connection = administrator();
  std::string text = "SELECT CONCAT(table_name,'.',column_name) FROM information_schema.statistics WHERE "
                     "table_schema=DATABASE() AND seq_in_index=1 AND column_name<>'Mandant' ORDER BY 1";
  auto others = connection->prepare(text);
  std::string names;
  while (others && others->step() == Step::Row)
    names += std::string(others->text(0)) + ' ';
  EXPECT_EQ(names, "Firmenstamm.Name Firmenstamm.Nummer FirmenstammExt.Nummer ") << "all clients are in there";
}

// However many rows there are, a positioned read looks at one.
TEST_F(Server, SeeksEveryPositionedRead) {
  auto connection = administrator();
  ASSERT_TRUE(connection);
  auto insert = connection->prepare(
      "INSERT INTO \"Kostenstelle\" (\"Mandant\",\"Jahr\",\"Nr\",\"Dimension\",\"Kostref\",\"Kuerzel\","
      "\"Name\",\"LaufzeitVon\",\"LaufzeitBis\",\"SWinEuro\") "
      "SELECT 9,2026,LPAD(seq,7,'0'),seq%3,'','K','N','','',0 FROM seq_1_to_2000");
  ASSERT_TRUE(insert && insert->step() == Step::Done);
  const Table &table = *findTable(kKost);
  for (const Key &key : table.keys)
    for (ReadOp op : {ReadOp::First, ReadOp::Last, ReadOp::Next, ReadOp::Prev, ReadOp::Ge, ReadOp::Le, ReadOp::Range,
                      ReadOp::StepNext, ReadOp::Exact, ReadOp::Exists}) {
      auto read = connection->prepare(selectStatement(connection->dialect(), table, key, op));
      ASSERT_TRUE(read);
      int parameter = 1;
      read->bind(parameter++, int64_t(9));
      read->bind(parameter++, int64_t(2026));
      const bool steps = op == ReadOp::Next || op == ReadOp::Prev || op == ReadOp::StepNext;
      const std::vector<int> &fields = steps ? key.totalOrder : key.fields;
      std::vector<std::string> texts;
      for (int round = 0; round < (op == ReadOp::Range                         ? 2
                                   : op == ReadOp::First || op == ReadOp::Last ? 0
                                                                               : 1);
           ++round)
        for (int field : fields) {
          const std::string name = table.fields[size_t(field)].name;
          if (name == "Dimension")
            read->bind(parameter++, int64_t(1 + round));
          else
            read->bind(parameter++, std::string_view(name == "Nr"        ? "0001000"
                                                     : name == "Kuerzel" ? "K"
                                                     : name == "Name"    ? "N"
                                                                         : ""));
        }
      ASSERT_TRUE(connection->execute("FLUSH STATUS"));
      ASSERT_NE(read->step(), Step::Failed);
      read->reset();
      auto status = connection->prepare("SELECT CAST(SUM(VARIABLE_VALUE) AS SIGNED) FROM "
                                        "information_schema.SESSION_STATUS WHERE VARIABLE_NAME LIKE 'Handler_read%'");
      ASSERT_TRUE(status && status->step() == Step::Row);
      EXPECT_LE(status->integer(0), 4) << "key " << key.index << ", operation " << int(op);
    }
}

} // namespace
} // namespace test
