/// Two ways to do the same, in short turns one after the other, so that what else the machine does hits both.
#pragma once

#include <chrono>
#include <functional>
#include <vector>

namespace bench {

using Samples = std::vector<double>; // microseconds

double quantile(Samples samples, double part);

struct Comparison {
  Samples measured, bare, ratios; ///< ratios: of the turns
  long syncs = 0;                 ///< of the measured one

  double ratio() const { return quantile(ratios, 0.5); }
  double syncsEach() const { return double(syncs) / double(measured.size()); }
  double p99() const { return quantile(measured, 0.99) / quantile(bare, 0.99); }
};

struct Side {
  std::function<void()> work;
  std::function<void()> prepare = [] {}, restore = [] {}; ///< around a turn, not measured
};

Comparison compare(const Side &measured, const Side &bare, int turns, int perTurn, std::chrono::seconds limit);
void show(const char *what, const Comparison &result);

} // namespace bench
