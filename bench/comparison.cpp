#include "comparison.h"

#include <algorithm>
#include <cstdio>

#include "durability.h"

namespace bench {
namespace {

using Clock = std::chrono::steady_clock;

double turn(const Side &side, int count, Samples &samples) {
  side.prepare();
  auto begin = Clock::now(), last = begin;
  for (int i = 0; i < count; ++i) {
    side.work();
    auto now = Clock::now();
    samples.push_back(std::chrono::duration<double, std::micro>(now - last).count());
    last = now;
  }
  side.restore();
  return std::chrono::duration<double, std::micro>(last - begin).count();
}

} // namespace

double quantile(Samples samples, double part) {
  auto at = samples.begin() + ptrdiff_t(double(samples.size() - 1) * part);
  std::nth_element(samples.begin(), at, samples.end());
  return *at;
}

Comparison compare(const Side &measured, const Side &bare, int turns, int perTurn, std::chrono::seconds limit) {
  Comparison result;
  Samples warmUp;
  turn(measured, perTurn, warmUp);
  turn(bare, perTurn, warmUp);
  auto end = Clock::now() + limit;
  for (int i = 0; i < turns && Clock::now() < end; ++i) {
    double besides = i % 2 ? turn(bare, perTurn, result.bare) : 0;
    long before = syncCount();
    double took = turn(measured, perTurn, result.measured);
    result.syncs += syncCount() - before;
    if (i % 2 == 0) besides = turn(bare, perTurn, result.bare);
    result.ratios.push_back(took / besides);
  }
  return result;
}

void show(const char *what, const Comparison &result) {
  std::printf("%-34s %6zu each; median %7.1f us, bare %7.1f us; p99 %8.1f us, bare %8.1f us\n", what,
              result.measured.size(), quantile(result.measured, 0.5), quantile(result.bare, 0.5),
              quantile(result.measured, 0.99), quantile(result.bare, 0.99));
}

} // namespace bench
