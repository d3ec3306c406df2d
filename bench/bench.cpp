// Speed, as ratios to bare measures in one run: build/native/bin/zelk98_bench
//
// Each figure stands beside what the engine alone needs for the same work (a prepared statement, a seek for each row),
// so that the machine cancels out. Medians of several repetitions.
#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <random>
#include <string>
#include <unistd.h>

#include "platform/files.h"
#include "sqlite/sqlite_connection.h"
#include "vldb98/database.h"
#include "zelk98/zelk98.h"
#include "zelkctl/verbs.h"

namespace {

using namespace vldb98;

constexpr int kAccounts = 10000;
constexpr int kYear = 2026;

std::string accountNumber(int i) {
  return std::to_string(10000 + i);
}

/// One client with many debtors in a temporary folder, a session and a bare connection to the same file.
class BenchBooks {
public:
  BenchBooks() : folder_(std::filesystem::temp_directory_path() / ("zelk98-bench-" + std::to_string(::getpid()))) {
    std::filesystem::create_directories(folder_);
    ::setenv("ZELK_SETTINGS", (folder_ / "settings.ini").c_str(), 1);
    if (zelkctl::provision((folder_ / "programm").string()) != 0) std::abort();
    DatabaseSettings settings;
    settings.directory = (folder_ / "programm" / "DATEN").string();
    settings.openEmbedded = [](const std::string &path, std::chrono::milliseconds wait) {
      return openSqlite(path, {wait, false, true});
    };
    store = openSession(settings);
    fill();
    std::string file = platform::withSeparator(settings.directory) + kDatabaseFile;
    if (sqlite3_open_v2(file.c_str(), &bare, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr) != SQLITE_OK)
      std::abort();
  }
  ~BenchBooks() {
    sqlite3_close_v2(bare);
    store.reset();
    std::filesystem::remove_all(folder_);
  }

  std::unique_ptr<Store> store;
  sqlite3 *bare = nullptr;

private:
  void fill() {
    DATENBANK record{};
    std::snprintf(record.Firmenstamm.Name, sizeof record.Firmenstamm.Name, "Messung");
    record.Firmenstamm.Nummer = 1;
    record.Firmenstamm.Version = kDataVersion;
    std::snprintf(record.Firmenstamm.AktJahr, sizeof record.Firmenstamm.AktJahr, "%d", kYear - 1980);
    uint8_t found;
    store->Transaktion(1, 0, ZELK_ENG_DEFAULT);
    store->Insert(record, kFirmenstamm, ZELK_ENG_DEFAULT);
    store->SetzeFista(1, found);
    for (int i = 0; i < kAccounts; ++i) {
      PERSONENKONTO debtor{};
      std::snprintf(debtor.Nr, sizeof debtor.Nr, "%-7s", accountNumber(i).c_str());
      std::snprintf(debtor.Name, sizeof debtor.Name, "Kunde Nummer %d", i);
      std::snprintf(debtor.Ort, sizeof debtor.Ort, "Neustadt");
      std::snprintf(debtor.Kreditlimit, sizeof debtor.Kreditlimit, "000005000,00");
      std::snprintf(debtor.Sammelkonto, sizeof debtor.Sammelkonto, "1400   ");
      record.Personenkonto = debtor;
      if (!store->Insert(record, kDebitor, ZELK_ENG_DEFAULT)) std::abort();
    }
    store->Transaktion(2, 0, ZELK_ENG_DEFAULT);
  }

  std::filesystem::path folder_;
};

BenchBooks &books() {
  static BenchBooks instance;
  return instance;
}

class BareStatement {
public:
  explicit BareStatement(const char *condition) {
    std::string sql = "SELECT ";
    const Table &table = *findTable(kDebitor);
    for (const Field &field : table.fields)
      sql += std::string(&field == &table.fields.front() ? "" : ",") + "\"" + field.name + "\"";
    sql += std::string(" FROM Debitor WHERE Mandant=1 AND Jahr=2026 AND ") + condition;
    columns_ = int(table.fields.size());
    sqlite3_prepare_v2(books().bare, sql.c_str(), -1, &statement_, nullptr);
  }
  ~BareStatement() { sqlite3_finalize(statement_); }

  /// Reads one row as a program without this library would; false when there is none.
  bool row(const std::string &number) {
    sqlite3_bind_text(statement_, 1, number.c_str(), int(number.size()), SQLITE_STATIC);
    bool there = sqlite3_step(statement_) == SQLITE_ROW;
    for (int i = 0; there && i < columns_; ++i) {
      if (sqlite3_column_type(statement_, i) == SQLITE_INTEGER)
        benchmark::DoNotOptimize(sqlite3_column_int64(statement_, i));
      else
        benchmark::DoNotOptimize(sqlite3_column_text(statement_, i));
    }
    if (there) number_ = reinterpret_cast<const char *>(sqlite3_column_text(statement_, 0));
    sqlite3_reset(statement_);
    return there;
  }
  const std::string &number() const { return number_; }

private:
  sqlite3_stmt *statement_ = nullptr;
  int columns_;
  std::string number_;
};

int randomAccount() {
  static std::mt19937 random(1);
  return int(random() % kAccounts);
}

void barePointSelect(benchmark::State &state) {
  BareStatement statement("Nr=?");
  for (auto _ : state)
    if (!statement.row(accountNumber(randomAccount()))) state.SkipWithError("no row");
}

void positionedRead(benchmark::State &state) {
  DATENBANK record;
  uint8_t found;
  for (auto _ : state)
    if (!books().store->UsedGet(record, KeyBuilder().account(accountNumber(randomAccount())), found, kDebitor,
                                ZELK_ENG_DEFAULT) ||
        !found)
      state.SkipWithError("no record");
}

void bareWalk(benchmark::State &state) {
  BareStatement statement("Nr>? ORDER BY Nr LIMIT 1");
  for (auto _ : state) {
    int rows = 0;
    std::string at;
    while (statement.row(at)) {
      at = statement.number();
      ++rows;
    }
    if (rows != kAccounts) state.SkipWithError("rows missing");
  }
}

void walk(benchmark::State &state) {
  DATENBANK record;
  uint8_t found;
  for (auto _ : state) {
    int rows = 0;
    int done = books().store->GetFirstExt(record, found, kDebitor, ZELK_ENG_DEFAULT, 0);
    for (; done && found; ++rows)
      done = books().store->GetNextExt(record, found, kDebitor, ZELK_ENG_DEFAULT);
    if (rows != kAccounts) state.SkipWithError("records missing");
  }
}

void lockAndUnlock(benchmark::State &state) {
  for (auto _ : state) {
    books().store->Lock(kDebitor, nullptr, 0, ZELK_ENG_DEFAULT);
    books().store->Unlock(kDebitor, 0, ZELK_ENG_DEFAULT);
  }
}

void frameOnly(benchmark::State &state) {
  books();
  for (auto _ : state)
    if (ZELK_BeendeHolen() != ZELK_OK) state.SkipWithError("refused");
}

BENCHMARK(barePointSelect);
BENCHMARK(positionedRead);
BENCHMARK(bareWalk);
BENCHMARK(walk);
BENCHMARK(lockAndUnlock);
BENCHMARK(frameOnly);

/// Keeps the medians for the figures below.
class MedianReporter : public benchmark::ConsoleReporter {
public:
  void ReportRuns(const std::vector<Run> &runs) override {
    for (const Run &run : runs)
      if (run.aggregate_name == "median") medians[run.run_name.function_name] = run.GetAdjustedRealTime();
    ConsoleReporter::ReportRuns(runs);
  }
  std::map<std::string, double> medians;
};

struct Figure {
  const char *what, *measured, *beside; // beside null: the limit is in microseconds
  double limit;
};

constexpr Figure kFigures[] = {
    {"positioned read by primary key / bare point select", "positionedRead", "barePointSelect", 2.5},
    {"walk over 10,000 records / bare re-seek per row", "walk", "bareWalk", 2.5},
    {"Lock and Unlock of a table, us", "lockAndUnlock", nullptr, 10},
    {"entering and leaving the frame, us", "frameOnly", nullptr, 1},
};

} // namespace

int main(int argc, char **argv) {
  std::string repetitions = "--benchmark_repetitions=5", aggregates = "--benchmark_display_aggregates_only=true";
  std::vector<char *> arguments(argv, argv + argc);
  arguments.insert(arguments.begin() + 1, {repetitions.data(), aggregates.data()});
  int count = int(arguments.size());
  benchmark::Initialize(&count, arguments.data());
  MedianReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  std::puts("");
  bool all = true;
  for (const Figure &figure : kFigures) {
    if (!reporter.medians.count(figure.measured)) continue;
    double value = reporter.medians[figure.measured] / (figure.beside ? reporter.medians[figure.beside] : 1000);
    bool reached = value <= figure.limit;
    all = all && reached;
    std::printf("%-52s %6.2f  limit %5.2f  %s\n", figure.what, value, figure.limit, reached ? "reached" : "MISSED");
  }
  return all ? 0 : 1;
}
