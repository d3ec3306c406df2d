// A database server, beside the bare statements on the same one. It is found as the tests find it
// (tests/mariadb/with_server), and made durable. The bare statements go through the library's own connection to the
// driver, which adds nothing to a way to the server that could be seen.
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "books.h"
#include "comparison.h"
#include "figures.h"
#include "frame/settings.h"
#include "odbc/odbc_connection.h"
#include "store/database.h"
#include "zelkctl/verbs.h"

namespace bench {
namespace {

using namespace vldb98;

constexpr char kDatabase[] = "zelk_bench";
constexpr uint16_t kClients = 8;
constexpr int kOnlyBatch = 1; ///< of every client
constexpr int kBlock = 100;   ///< rows of a bare walk's statement

/// HOST:PORT/USER/PASSWORD, as the tests are told.
ServerSettings serverFrom(const std::string &text, const char *database) {
  const size_t colon = text.find(':'), user = text.find('/'), password = text.find('/', user + 1);
  require(password != std::string::npos, "reading ZELK_TEST_MARIADB");
  ServerSettings server;
  server.engine = ZELK_ENG_MYSQL;
  server.host = text.substr(0, colon);
  server.port = uint16_t(std::stoi(text.substr(colon + 1)));
  server.user = text.substr(user + 1, password - user - 1);
  server.password = Secret(text.substr(password + 1));
  server.database = database;
  return server;
}

std::unique_ptr<SqlConnection> connect(const ServerSettings &server) {
  std::string ignored;
  auto connection = openOdbc(server, std::chrono::seconds(10), ignored);
  require(connection != nullptr, "connecting to the server");
  return connection;
}

/// Books on the server: client 1 with all accounts, the others with a few, an empty batch each.
class ServerBooks {
public:
  explicit ServerBooks(const std::string &where) : server(serverFrom(where, kDatabase)) {
    administrator_ = connect(serverFrom(where, "zelk_test"));
    for (const char *sql : {"DROP DATABASE IF EXISTS zelk_bench", "CREATE DATABASE zelk_bench"})
      require(administrator_->execute(sql), sql);
    flushAtCommit(true);
    std::string name = std::filesystem::temp_directory_path() / "zelk98-bench-XXXXXX";
    require(::mkdtemp(name.data()) != nullptr, "making a temporary folder");
    folder_ = name;
    ZELK_Detach();
    useSettings(folder_ / "settings.ini");
    auto write = [](const char *key, const std::string &value) {
      MFWritePrivateProfileString(kServerSection, key, value.c_str(), "");
    };
    write("Engine", "2");
    write("Host", server.host);
    write("Port", std::to_string(server.port));
    write("User", server.user);
    write("Passwort", server.password.reveal());
    write("Datenbank", server.database);
    require(zelkctl::provision((folder_ / "programm").string()) == 0, "zelkctl einrichten");
    DatabaseSettings settings;
    settings.server = server;
    settings.openServer = openOdbc;
    auto store = openSession(settings);
    require(store != nullptr, "opening the books");
    for (uint16_t client = 1; client <= kClients; ++client)
      fill(*store, client, client == 1 ? kAccounts : 10, {0});
  }
  ~ServerBooks() {
    ZELK_Detach();
    std::filesystem::remove_all(folder_);
  }
  ServerBooks(const ServerBooks &) = delete;
  ServerBooks &operator=(const ServerBooks &) = delete;

  void flushAtCommit(bool flush) {
    require(administrator_->execute(std::string("SET GLOBAL innodb_flush_log_at_trx_commit=") + (flush ? "1" : "0")),
            "setting the server's durability");
  }

  const ServerSettings server;

private:
  std::unique_ptr<SqlConnection> administrator_;
  std::filesystem::path folder_;
};

class BareStatement {
public:
  BareStatement(SqlConnection &connection, const std::string &sql) : statement_(connection.prepare(sql)) {
    require(statement_ != nullptr, sql.c_str());
  }
  /// Runs it with these parameters. \return whether it delivers a row
  template <class... Values> bool run(const Values &...values) {
    int parameter = 1;
    (statement_->bind(parameter++, values), ...);
    const Step step = statement_->step();
    require(step != Step::Failed, "a bare statement");
    first_ = step == Step::Row ? statement_->integer(0) : 0;
    statement_->reset();
    return step == Step::Row;
  }
  int64_t first() const { return first_; } ///< number in the first column
  SqlStatement &operator*() { return *statement_; }

private:
  std::unique_ptr<SqlStatement> statement_;
  int64_t first_ = 0;
};

/// What a durable posting needs of the server: the same look-ups, one statement each, the same rows.
class BarePosting {
public:
  BarePosting(const ServerSettings &server, uint16_t client)
      : connection_(connect(server)), client_(client), row_(copied("Batchbuchung", "Nr")),
        line_(copied("Split", "Buchung")) {}

  void insert(const std::string &account) {
    constexpr std::string_view day = "2026-01-21";
    constexpr int64_t year = kYear, batch = kOnlyBatch, taxKey = 3;
    const int64_t client = client_;
    require(connection_->begin(false), "beginning");
    const bool known = master_.run(client) && extension_.run(client) && batch_.run(client, batch) &&
                       year_.run(client, day) && debit_.run(client, year, std::string_view(account)) &&
                       credit_.run(client, year, std::string_view("8400")) && taxKey_.run(client, taxKey, day);
    require(known, "a bare look-up");
    const int64_t number = greatest_.run(client, batch) ? greatest_.first() + 1 : 1;
    row_.run(number, client);
    line_.run(number, client);
    require(connection_->commit(), "committing");
  }

private:
  // A row of the library, written once more under another number: the values stand in the statement.
  BareStatement copied(const std::string &table, const std::string &numbered) {
    struct Column {
      std::string name;
      bool isText;
    };
    std::vector<Column> columns;
    BareStatement described(*connection_, "SELECT column_name, data_type FROM information_schema.columns WHERE "
                                          "table_schema=DATABASE() AND table_name=? ORDER BY ordinal_position");
    (*described).bind(1, std::string_view(table));
    while ((*described).step() == Step::Row)
      columns.push_back({std::string((*described).text(0)), (*described).text(1) == "varchar"});
    BareStatement like(*connection_, "SELECT * FROM \"" + table + "\" WHERE \"Mandant\"=? LIMIT 1");
    (*like).bind(1, int64_t(client_));
    require((*like).step() == Step::Row, "a posting of the library");
    std::string values;
    for (size_t i = 0; i < columns.size(); ++i) {
      values += i ? "," : "";
      values += columns[i].name == numbered    ? "?1"
                : columns[i].name == "Mandant" ? "?2"
                : columns[i].name == "Kennung" ? "LPAD(?1,32,'0')" // unique, and none of the library's
                : (*like).isNull(int(i))       ? "NULL"
                : columns[i].isText            ? '\'' + std::string((*like).text(int(i))) + '\''
                                               : std::to_string((*like).integer(int(i)));
    }
    (*like).reset();
    return {*connection_, "INSERT INTO \"" + table + "\" VALUES (" + values + ")"};
  }

  std::unique_ptr<SqlConnection> connection_;
  uint16_t client_;
  BareStatement master_{*connection_, "SELECT * FROM \"Firmenstamm\" WHERE \"Nummer\"=?"},
      extension_{*connection_, "SELECT * FROM \"FirmenstammExt\" WHERE \"Nummer\"=?"},
      batch_{*connection_, "SELECT * FROM \"Stapel\" WHERE \"Mandant\"=? AND \"Nr\"=?"},
      year_{*connection_, "SELECT * FROM \"Geschaeftsjahr\" WHERE \"Mandant\"=? AND \"Beginn\"<=? ORDER BY \"Beginn\" "
                          "DESC LIMIT 1"},
      debit_{*connection_, "SELECT * FROM \"Debitor\" WHERE \"Mandant\"=? AND \"Jahr\"=? AND \"Nr\"=?"},
      credit_{*connection_, "SELECT * FROM \"Sachkonto\" WHERE \"Mandant\"=? AND \"Jahr\"=? AND \"Nr\"=?"},
      taxKey_{*connection_, "SELECT * FROM \"Steuerschluessel\" WHERE \"Mandant\"=? AND \"Schluessel\"=? AND "
                            "\"GueltigAb\"<=? ORDER BY \"GueltigAb\" DESC LIMIT 1"},
      greatest_{*connection_,
                "SELECT \"Nr\" FROM \"Batchbuchung\" WHERE \"Mandant\"=? AND \"Stapel\"=? ORDER BY \"Nr\" "
                "DESC LIMIT 1 FOR UPDATE"};
  BareStatement row_, line_;
};

ZELK_BUCHUNG postingOf(uint16_t client, int account) {
  ZELK_BUCHUNG posting = makePosting(kOnlyBatch);
  posting.Mandantennummer = client;
  std::snprintf(posting.Sollkonto, sizeof posting.Sollkonto, "%s", accountNumber(account).c_str());
  return posting;
}

void post(ZELK_BUCHUNG &posting) {
  require(ZELK_BuchungEinfuegen(&posting, 0) == ZELK_OK, "a posting through the library");
}

void walk() {
  ZELK_PEKO account;
  int rows = 0;
  ZelkResult result = ZELK_InitHoleKonto(1, ZELK_DEBITOR, 0, "", 0);
  require(result == ZELK_OK, "a walk through the library");
  for (; result == ZELK_OK; ++rows)
    result = ZELK_HolePeko(&account);
  require(result == ZELK_letzterDatensatz && rows == kAccounts, "a walk through the library");
}

void bareWalk(BareStatement &statement) {
  std::string at;
  int rows = 0;
  for (int inBlock = kBlock; inBlock == kBlock; (*statement).reset()) {
    (*statement).bind(1, std::string_view(at));
    for (inBlock = 0; (*statement).step() == Step::Row; ++inBlock)
      at = (*statement).text(2);
    rows += inBlock;
  }
  require(rows == kAccounts, "a bare walk");
}

/// Postings a second that so many threads make, each into a client of its own.
template <class Prepare> double rateOf(int threads, Prepare prepare) {
  std::atomic<int> ready{0};
  std::atomic<bool> go{false}, stop{false};
  std::atomic<long> count{0};
  std::vector<std::thread> all;
  for (int i = 0; i < threads; ++i)
    all.emplace_back([&, work = prepare(uint16_t(i + 1))]() mutable {
      work();
      ++ready;
      while (!go)
        std::this_thread::yield();
      for (; !stop; ++count)
        work();
    });
  while (ready < threads)
    std::this_thread::yield();
  const auto begin = std::chrono::steady_clock::now();
  go = true;
  std::this_thread::sleep_for(std::chrono::milliseconds(1500));
  const long done = count;
  const std::chrono::duration<double> took = std::chrono::steady_clock::now() - begin;
  stop = true;
  for (std::thread &thread : all)
    thread.join();
  return double(done) / took.count();
}

} // namespace

Figures serverFigures() {
  const char *where = std::getenv("ZELK_TEST_MARIADB");
  if (!where) {
    std::puts("the server is not measured: there is none (tests/mariadb/with_server build/native/bin/zelk98_bench)");
    return {};
  }
  ServerBooks books(where);
  for (uint16_t client = 1; client <= kClients; ++client) {
    ZELK_BUCHUNG posting = postingOf(client, 0);
    post(posting); // what the bare rows are like
  }
  const Side library{[] {
    ZELK_BUCHUNG posting = postingOf(1, randomAccount());
    post(posting);
  }};
  BarePosting posting(books.server, 1);
  const Side bare{[&] { posting.insert(accountNumber(randomAccount())); }};
  const uint64_t tripsBefore = roundTrips();
  library.work();
  std::printf("round trips of a posting on the server: %llu, of the bare one: ",
              static_cast<unsigned long long>(roundTrips() - tripsBefore));
  const uint64_t tripsBetween = roundTrips();
  bare.work();
  std::printf("%llu\n", static_cast<unsigned long long>(roundTrips() - tripsBetween));
  Comparison durable = compare(library, bare, 150, 10, std::chrono::seconds(20));
  show("durable posting on the server", durable);
  books.flushAtCommit(false);
  Comparison fast = compare(library, bare, 200, 10, std::chrono::seconds(10));
  books.flushAtCommit(true);
  show("without durability", fast);

  auto connection = connect(books.server);
  BareStatement blocks(*connection,
                       "SELECT * FROM \"Debitor\" WHERE \"Mandant\"=1 AND \"Jahr\"=2026 AND \"Nr\">? ORDER "
                       "BY \"Nr\" LIMIT " +
                           std::to_string(kBlock));
  Comparison walks = compare({walk}, {[&] { bareWalk(blocks); }}, 15, 1, std::chrono::seconds(20));
  show("walk over 10,000 accounts", walks);

  auto throughLibrary = [](uint16_t client) { return [posting = postingOf(client, 0)]() mutable { post(posting); }; };
  auto past = [&](uint16_t client) {
    return [bare = std::make_shared<BarePosting>(books.server, client)] { bare->insert(accountNumber(0)); };
  };
  Samples one, eight, bareOne, bareEight, shares;
  for (int turn = 0; turn < 5; ++turn) {
    one.push_back(rateOf(1, throughLibrary));
    bareOne.push_back(rateOf(1, past));
    eight.push_back(rateOf(kClients, throughLibrary));
    bareEight.push_back(rateOf(kClients, past));
    shares.push_back(eight.back() / bareEight.back());
  }
  std::printf(
      "postings a second: one thread %.0f, bare %.0f; eight threads %.0f (%.2f of one), bare %.0f (%.2f of one)\n",
      quantile(one, 0.5), quantile(bareOne, 0.5), quantile(eight, 0.5), quantile(eight, 0.5) / quantile(one, 0.5),
      quantile(bareEight, 0.5), quantile(bareEight, 0.5) / quantile(bareOne, 0.5));
  return {{"durable posting on a server / bare transaction", durable.ratio(), Bound::AtMost, 1.5},
          {"walk over 10,000 accounts on a server / blocks", walks.ratio(), Bound::AtMost, 2},
          {"eight threads on a server / eight bare ones", quantile(shares, 0.5), Bound::AtLeast, 0.67}};
}

} // namespace bench
