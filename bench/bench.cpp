// Speed, as ratios to bare measures in one run: build/native/bin/zelk98_bench
//
// Each figure stands beside what the engine alone needs for the same work, so that the machine cancels out. The books
// lie in the folder for temporary files ($TMPDIR): on a disk, or a durable posting costs no more than another one.
// Beside a server, as tests/mariadb/with_server starts one, those of the server are measured too; "server" as the only
// argument measures nothing else.
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "books.h"
#include "figures.h"
#include "processes.h"

namespace {

int report(const bench::Figures &figures) {
  bool all = true;
  for (const bench::Figure &figure : figures) {
    all = all && figure.reached();
    std::printf("%-52s %6.2f  at %s %5.2f  %s\n", figure.what.c_str(), figure.value,
                figure.bound == bench::Bound::AtMost ? "most " : "least", figure.limit,
                figure.reached() ? "reached" : "MISSED");
  }
  return all ? 0 : 1;
}

} // namespace

int main(int argc, char **argv) {
  using namespace bench;
  if (argc == 6 && std::strcmp(argv[1], kWorkerOption) == 0) return workerMain(argv + 2);
  if (argc == 2 && std::strcmp(argv[1], "server") == 0) return report(serverFigures());
  books();
  double before[1] = {}, after[1] = {};
  ::getloadavg(before, 1);
  Figures figures = storeFigures(argc, argv);
  std::puts("");
  for (auto part :
       {postingFigures, splitFigures, batchFigures, openItemFigures, evaluationFigures, processFigures, serverFigures})
    for (Figure &figure : part())
      figures.push_back(std::move(figure));
  ::getloadavg(after, 1);
  std::printf("load of the machine: %.1f before, %.1f after\n\n", before[0], after[0]);
  return report(figures);
}
