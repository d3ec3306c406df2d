// Postings through ZELK_BuchungEinfuegen, beside the bare transaction that looks the same up and writes the same rows.
#include <chrono>

#include "bare.h"
#include "books.h"
#include "comparison.h"
#include "durability.h"
#include "figures.h"

namespace bench {
namespace {

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
