// The record store and the call frame, each beside what the engine alone needs for the same work: a prepared statement,
// a seek for each row.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>

#include "bare.h"
#include "books.h"
#include "figures.h"

namespace bench {
namespace {

using namespace vldb98;

Store &store() {
  static std::unique_ptr<Store> instance = books().openStore();
  return *instance;
}

std::string debtorsWhere(const char *condition) {
  std::string columns;
  for (const Field &field : findTable(kDebitor)->fields)
    columns += (columns.empty() ? "\"" : ",\"") + std::string(field.name) + "\"";
  return "SELECT " + columns + " FROM Debitor WHERE Mandant=1 AND Jahr=2026 AND " + condition;
}

void barePointSelect(benchmark::State &state) {
  BareConnection connection(books().libraryFile());
  BareStatement statement(connection, debtorsWhere("Nr=?"));
  for (auto _ : state)
    if (std::string account = accountNumber(randomAccount()); !statement.run(std::string_view(account)))
      state.SkipWithError("no row");
}

void positionedRead(benchmark::State &state) {
  DATENBANK record;
  uint8_t found;
  for (auto _ : state)
    if (!store().UsedGet(record, KeyBuilder().account(accountNumber(randomAccount())), found, kDebitor) || !found)
      state.SkipWithError("no record");
}

void bareWalk(benchmark::State &state) {
  BareConnection connection(books().libraryFile());
  BareStatement statement(connection, debtorsWhere("Nr>? ORDER BY Nr LIMIT 1"));
  for (auto _ : state) {
    int rows = 0;
    std::string at;
    while (statement.run(std::string_view(at))) {
      at = statement.firstText();
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
    int done = store().GetFirstExt(record, found, kDebitor);
    for (; done && found; ++rows)
      done = store().GetNextExt(record, found, kDebitor);
    if (rows != kAccounts) state.SkipWithError("records missing");
  }
}

void lockAndUnlock(benchmark::State &state) {
  for (auto _ : state) {
    store().Lock(kDebitor, nullptr, 0);
    store().Unlock(kDebitor, 0);
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

/// Keeps the medians for the figures below: processor time, which other load on the machine does not lengthen.
class MedianReporter : public benchmark::ConsoleReporter {
public:
  void ReportRuns(const std::vector<Run> &runs) override {
    for (const Run &run : runs)
      if (run.aggregate_name == "median") medians[run.run_name.function_name] = run.GetAdjustedCPUTime();
    ConsoleReporter::ReportRuns(runs);
  }
  std::map<std::string, double> medians;
};

struct Ratio {
  const char *what, *measured, *beside; // beside null: the limit is in microseconds
  double limit;
};

constexpr Ratio kRatios[] = {
    {"positioned read by primary key / bare point select", "positionedRead", "barePointSelect", 2.5},
    {"walk over 10,000 records / bare re-seek per row", "walk", "bareWalk", 2.5},
    {"Lock and Unlock of a table, us", "lockAndUnlock", nullptr, 10},
    {"entering and leaving the frame, us", "frameOnly", nullptr, 1},
};

} // namespace

Figures storeFigures(int argc, char **argv) {
  // In turns, so that what else the machine does hits both sides of a ratio.
  std::string options[] = {"--benchmark_repetitions=9", "--benchmark_min_time=0.05",
                           "--benchmark_enable_random_interleaving=true", "--benchmark_display_aggregates_only=true"};
  std::vector<char *> arguments(argv, argv + argc);
  for (std::string &option : options)
    arguments.insert(arguments.begin() + 1, option.data());
  int count = int(arguments.size());
  benchmark::Initialize(&count, arguments.data());
  MedianReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  Figures figures;
  for (const Ratio &ratio : kRatios)
    if (reporter.medians.count(ratio.measured))
      figures.push_back({ratio.what,
                         reporter.medians[ratio.measured] / (ratio.beside ? reporter.medians[ratio.beside] : 1000),
                         Bound::AtMost, ratio.limit});
  return figures;
}

} // namespace bench
