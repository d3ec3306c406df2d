// Postings through ZELK_BuchungEinfuegen, beside the bare transaction that looks the same up and writes the same rows.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>

#include "bare.h"
#include "books.h"
#include "durability.h"
#include "figures.h"

namespace bench {
namespace {

using Clock = std::chrono::steady_clock;
using Samples = std::vector<double>; // microseconds

double quantile(Samples samples, double part) {
  auto at = samples.begin() + ptrdiff_t(double(samples.size() - 1) * part);
  std::nth_element(samples.begin(), at, samples.end());
  return *at;
}

/// Two ways to do the same, in short turns one after the other, so that what else the machine does hits both.
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

Side postingsInto(int batch) {
  return {[batch] {
    ZELK_BUCHUNG posting = makePosting(batch);
    require(ZELK_BuchungEinfuegen(&posting, 0) == ZELK_OK, "a posting through the library");
  }};
}

} // namespace

Figures postingFigures() {
  const Side library = postingsInto(kBatch);
  library.work(); // what the bare rows are like
  BareConnection connection(books().bareFile());
  BarePosting posting(connection, books().libraryFile(), kBatch);
  const Side bare{[&] { posting.insert(); }};

  Comparison durable = compare(library, bare, 250, 10, std::chrono::seconds(20));
  show("durable", durable);
  std::string file = books().protocolFile();
  require(ZELK_Protokoll(0, 2, file.data()) == ZELK_OK, "choosing the protocol");
  Side protocolled = library;
  protocolled.prepare = [] { require(ZELK_ProtokollStart() == ZELK_OK, "opening the protocol"); };
  protocolled.restore = [] { ZELK_ProtokollEnde(); };
  Comparison protocol = compare(protocolled, library, 150, 10, std::chrono::seconds(15));
  show("protocol open (bare: closed)", protocol);

  WithoutDurability fromHere;
  Comparison fast = compare(library, bare, 400, 25, std::chrono::seconds(10));
  show("without durability", fast);
  Comparison large = compare(postingsInto(kLargeBatch), postingsInto(kSmallBatch), 200, 5, std::chrono::seconds(10));
  show("batch of 100,000 (bare: of 1,000)", large);
  return {{"durable posting / bare transaction", durable.ratio(), Bound::AtMost, 1.3},
          {"  its 99th percentile / that of the bare one", durable.p99(), Bound::AtMost, 3},
          {"  fsync and fdatasync per posting", durable.syncsEach(), Bound::AtMost, 1.05},
          {"durable posting, protocol open / closed", protocol.ratio(), Bound::AtMost, 2},
          {"posting / bare transaction, neither durable", fast.ratio(), Bound::AtMost, 4},
          {"posting into a batch of 100,000 / one of 1,000", large.ratio(), Bound::AtMost, 1.1}};
}

} // namespace bench
