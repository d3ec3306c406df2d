#include "bare.h"

#include <algorithm>

#include <benchmark/benchmark.h>

#include "books.h"
#include "platform/system.h"

namespace bench {
namespace {

constexpr uint64_t kWait = 10000; // milliseconds, as the library waits

// SQLite's own waiting sleeps in ever longer steps; what the library is compared with loses no time there.
int onBusy(void *deadline, int attempt) {
  auto &until = *static_cast<uint64_t *>(deadline);
  uint64_t now = platform::steadyMilliseconds();
  if (attempt == 0) until = now + kWait;
  if (now >= until) return 0;
  platform::sleepMicroseconds(std::min(50u << std::min(attempt, 7), 4000u));
  return 1;
}

} // namespace

BareConnection::BareConnection(const std::string &file) {
  static uint64_t deadline;
  require(sqlite3_open_v2(file.c_str(), &handle_, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr) == SQLITE_OK,
          "opening a database");
  sqlite3_busy_handler(handle_, onBusy, &deadline);
  execute("PRAGMA journal_mode=WAL");
  execute("PRAGMA synchronous=FULL");
}

BareConnection::~BareConnection() {
  sqlite3_close_v2(handle_);
}

void BareConnection::execute(const char *sql) {
  require(sqlite3_exec(handle_, sql, nullptr, nullptr, nullptr) == SQLITE_OK, sql);
}

BareStatement::BareStatement(const BareConnection &connection, const std::string &sql) {
  require(sqlite3_prepare_v3(connection.handle(), sql.c_str(), -1, SQLITE_PREPARE_PERSISTENT, &statement_, nullptr) ==
              SQLITE_OK,
          sql.c_str());
  columns_ = sqlite3_column_count(statement_);
}

bool BareStatement::step() {
  int result = sqlite3_step(statement_);
  require(result == SQLITE_ROW || result == SQLITE_DONE, sqlite3_sql(statement_));
  for (int i = 0; result == SQLITE_ROW && i < columns_; ++i)
    if (sqlite3_column_type(statement_, i) == SQLITE_INTEGER) {
      int64_t number = sqlite3_column_int64(statement_, i);
      benchmark::DoNotOptimize(number);
      if (i == 0) number_ = number;
    } else {
      auto text = reinterpret_cast<const char *>(sqlite3_column_text(statement_, i));
      benchmark::DoNotOptimize(text);
      if (i == 0) text_ = text ? text : "";
    }
  sqlite3_reset(statement_);
  return result == SQLITE_ROW;
}

BarePosting::Row::Row(const BareConnection &connection, const std::string &table, const std::string &likeLibrary,
                      int batch)
    : insert(connection, [&] {
        BareConnection library(likeLibrary);
        sqlite3_stmt *last = nullptr;
        std::string key = table == "Split" ? "Buchung" : "Nr";
        std::string sql = "SELECT * FROM " + table + " WHERE Mandant=1 AND Stapel=" + std::to_string(batch) +
                          " ORDER BY " + key + " DESC LIMIT 1";
        sqlite3_prepare_v2(library.handle(), sql.c_str(), -1, &last, nullptr);
        require(sqlite3_step(last) == SQLITE_ROW, sql.c_str());
        std::string marks;
        for (int i = 0; i < sqlite3_column_count(last); ++i) {
          values.push_back(sqlite3_value_dup(sqlite3_column_value(last, i)));
          marks += i ? ",?" : "?";
        }
        sqlite3_finalize(last);
        return "INSERT INTO " + table + " VALUES (" + marks + ")";
      }()) {}

BarePosting::Row::~Row() {
  for (sqlite3_value *value : values)
    sqlite3_value_free(value);
}

void BarePosting::Row::write(int64_t number, int numberColumn) {
  for (size_t i = 0; i < values.size(); ++i)
    if (int(i) == numberColumn)
      insert.bind(numberColumn + 1, number);
    else
      insert.bind(int(i) + 1, values[i]);
  insert.step();
}

BarePosting::BarePosting(const BareConnection &connection, const std::string &likeLibrary, int batch)
    : batch_(batch), begin_(connection, "BEGIN IMMEDIATE"), commit_(connection, "COMMIT"),
      client_(connection, "SELECT * FROM Firmenstamm WHERE Nummer=?"),
      batchRecord_(connection, "SELECT * FROM Stapel WHERE Mandant=? AND Nr=?"),
      year_(connection, "SELECT * FROM Geschaeftsjahr WHERE Mandant=? AND Beginn<=? ORDER BY Beginn DESC LIMIT 1"),
      debit_(connection, "SELECT * FROM Debitor WHERE Mandant=? AND Jahr=? AND Nr=?"),
      credit_(connection, "SELECT * FROM Sachkonto WHERE Mandant=? AND Jahr=? AND Nr=?"),
      taxKey_(connection, "SELECT * FROM Steuerschluessel WHERE Mandant=? AND Schluessel=? AND GueltigAb<=? ORDER BY "
                          "GueltigAb DESC LIMIT 1"),
      greatest_(connection, "SELECT Nr FROM Batchbuchung WHERE Mandant=? AND Stapel=? ORDER BY Nr DESC LIMIT 1"),
      posting_(connection, "Batchbuchung", likeLibrary, batch), line_(connection, "Split", likeLibrary, batch) {}

void BarePosting::insert() {
  constexpr std::string_view day = "2026-01-21";
  constexpr int64_t client = 1, year = kYear, taxKey = 3;
  std::string account = accountNumber(randomAccount());
  begin_.step();
  bool known = client_.run(client) && batchRecord_.run(client, int64_t(batch_)) && year_.run(client, day) &&
               debit_.run(client, year, std::string_view(account)) &&
               credit_.run(client, year, std::string_view("8400")) && taxKey_.run(client, taxKey, day);
  require(known, "a bare look-up");
  int64_t number = greatest_.run(client, int64_t(batch_)) ? greatest_.firstNumber() + 1 : 1;
  constexpr int numberOfPosting = 2; // column of both tables, after the client and the batch
  posting_.write(number, numberOfPosting);
  line_.write(number, numberOfPosting);
  commit_.step();
}

} // namespace bench
