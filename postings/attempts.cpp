#include "postings/attempts.h"

#include <optional>
#include <string>

#include "frame/client.h"
#include "frame/messages.h"
#include "frame/notification.h"
#include "frame/protocol.h"
#include "postings/construction.h"
#include "postings/fields.h"
#include "postings/insertion.h"
#include "vlba98/encoding.h"

using namespace frame;
using namespace vldb98;

namespace postings {
namespace {

// Locked in this order before a posting is looked at, so that what was checked still holds when it is written.
constexpr FileNumber kLockOrder[] = {kKreditor, kDebitor, kSachkonto, kBatchbuchung, kSplit, kStapel, kKobu};

constexpr FileNumber kReleaseOrder[] = {kKreditor, kDebitor, kSachkonto, kBatchbuchung, kStapel, kSplit, kKobu};

// How often an insertion is tried in all when others are in its way: whoever was in the way has gone on by the next
// time, and who meets somebody three times in a row would also do so a fourth time.
constexpr int kAttempts = 3;

struct EnteredRate {
  MissingRate missing;
  vlfn98::ExchangeRate rate;
};

// What one attempt came to.
struct Attempt {
  Refusal refusal;
  bool skipped = false; // nothing was looked at
};

Attempt attempt(Store &store, Insertion &insertion, const std::optional<EnteredRate> &entered) try {
  if (entered) vlfn98::storeRate(store, entered->missing.currency, entered->missing.day, entered->rate);
  const LockedTables locks(store, kLockOrder, kReleaseOrder);
  if (locks.held()) return {insertion.run()};
  must(store.usable());
  return {.refusal = {}, .skipped = true};
} catch (const StoreFailed &) {
  return {{ZELKERR_Datenbank}};
}

// Everything was undone because others were in the way, and nothing around the insertion was undone with it.
bool mayBeRepeated(const Store &store) {
  return store.usable() && store.failure() == Failure::Retry && store.transactionDepth() == 0;
}

void noteUnknownOutcome(const BATCHBUCHUNG &posting) {
  protocolLine(
      "Die Verbindung zum Datenbankserver ist beim Speichern der Buchung verloren gegangen; ob sie gespeichert "
      "ist, ließ sich nicht feststellen. Belegnummer: " +
      vlba98::toUtf8(posting.Belegnummer) + ", Kennung: " + posting.Kennung);
}

} // namespace

ZelkResult insert(ThreadContext &context, const Posting &posting, Client client) {
  constructionOf(context).forgetExtras();
  std::optional<EnteredRate> entered;
  for (int attempts = 1;;) {
    // Opened anew after a dialog, from under which the host may have called.
    Store &store = context.store();
    if (client == Client::IsToBeOpened)
      if (ZelkResult opened = openClient(context, store, posting.head.Mandantennummer); opened <= 0) return opened;
    client = Client::IsToBeOpened;
    Insertion insertion(store, posting);
    const auto [refusal, skipped] = attempt(store, insertion, entered);
    // Hosts rely on it that a posting whose tables cannot be had in time is skipped without an error.
    if (skipped)
      protocolLine(
          "Die Buchung wurde übersprungen: Die Tabellen des Mandanten sind gesperrt. Es wurde nichts gebucht.");
    else if (!refusal)
      notifyPosting(store, insertion.stored());
    if (refusal.code == ZELKERR_Datenbank) {
      if (mayBeRepeated(store) && attempts++ < kAttempts) continue;
      if (store.outcomeUnknown()) noteUnknownOutcome(insertion.stored());
    }
    // A person reads and answers without the locks, so that others go on posting.
    if (refusal.code == ZELKERR_kein_Kurs && !entered)
      if (const auto rate = askForRate(insertion.missingRate(), store.HoleFista().Waehrung)) {
        entered = {insertion.missingRate(), *rate};
        continue;
      }
    if (!refusal.message) return refusal.code;
    const int line = posting.lines.size() > 1 ? refusal.line : -1;
    return refuse(context, refusal.code, refusal.message, refusal.fill, line);
  }
}

ZelkResult insertWithin(ThreadContext &context, const Posting &posting, int32_t Fehlermeldungen, Client client) {
  std::vector<Parameter> parameters = parametersOf(posting);
  parameters.push_back(messages(Fehlermeldungen));
  return runWithin(context, kInsertingExport, parameters,
                   [&](ThreadContext *) { return insert(context, posting, client); });
}

} // namespace postings
