#include "store/settlement.h"

#include <algorithm>

#include "platform/system.h"
#include "store/guards.h"

namespace vldb98 {
namespace {

constexpr int32_t kNoBatch = 0; // batches count from 1
constexpr int kByIdentifier = 1;

// Between two looks at a server that cannot be reached, in microseconds.
constexpr uint32_t kFirstPause = 10'000, kLongestPause = 500'000;

} // namespace

Settlement::Outcome Settlement::of(const BATCHBUCHUNG &posting, uint16_t client, const SessionTrace &lost) {
  const uint64_t end = platform::steadyMilliseconds() + uint64_t(patience_.count());
  uint64_t left = uint64_t(patience_.count());
  for (uint32_t pause = kFirstPause;; pause = std::min(pause * 2, kLongestPause)) {
    const Outcome outcome = ask(posting, client, lost, std::chrono::milliseconds(left));
    const uint64_t now = platform::steadyMilliseconds();
    if (outcome != Outcome::Unknown || now >= end) return outcome;
    platform::sleepMicroseconds(pause);
    left = end - now;
  }
}

// A mark with the posting's identifier can be inserted only when the posting is not stored, and only when its
// transaction, which holds the identifier as long as it is open, has ended: on whatever node of a cluster a COMMIT
// still lies, it fails then. The mark goes with the transaction that brought it, so that nobody ever sees it.
Settlement::Outcome Settlement::ask(const BATCHBUCHUNG &posting, uint16_t client, const SessionTrace &lost,
                                    std::chrono::milliseconds wait) {
  const std::unique_ptr<Store> other = reopen_(wait);
  uint8_t found = 0;
  if (!other) return Outcome::Unknown;
  other->endLost(lost);
  if (!other->SetzeFista(client, found) || !found) return Outcome::Unknown;
  Transaction marking(*other, false);
  if (!marking.isOpen()) return Outcome::Unknown;
  DATENBANK record{};
  record.Batchbuchung.Stapel = kNoBatch;
  record.Batchbuchung.Nr = numbers_.anyNumber();
  std::copy(std::begin(posting.Kennung), std::end(posting.Kennung), record.Batchbuchung.Kennung);
  if (other->Insert(record, kBatchbuchung))
    return marking.finish(other->Delete(kBatchbuchung)) ? Outcome::NotStored : Outcome::Unknown;
  const bool taken = other->failure() == Failure::Duplicate;
  marking.rollback();
  // The mark's number may be taken, too, by somebody else's mark.
  const bool stored = taken &&
                      other->UsedGet(record, KeyBuilder().text(posting.Kennung, IdentifierSource::kDigits), found,
                                     fileNumber(kBatchbuchung, kByIdentifier)) &&
                      found && record.Batchbuchung.Stapel == posting.Stapel;
  return stored ? Outcome::Stored : Outcome::Unknown;
}

} // namespace vldb98
