// The exports that insert a posting into a batch.
#include <cstring>
#include <optional>
#include <string>

#include "frame/call.h"
#include "frame/client.h"
#include "frame/messages.h"
#include "frame/notification.h"
#include "frame/protocol.h"
#include "postings/construction.h"
#include "postings/fields.h"
#include "postings/insertion.h"
#include "postings/rate_entry.h"
#include "store/guards.h"
#include "vlba98/encoding.h"
#include "vlba98/text.h"

using namespace frame;
using namespace vldb98;

namespace {

// Locked in this order before a posting is looked at, so that what was checked still holds when it is written.
constexpr FileNumber kLockOrder[] = {kKreditor, kDebitor, kSachkonto, kBatchbuchung, kSplit, kStapel, kKobu};

constexpr FileNumber kReleaseOrder[] = {kKreditor, kDebitor, kSachkonto, kBatchbuchung, kStapel, kSplit, kKobu};

// How often an insertion is tried in all when others are in its way: whoever was in the way has gone on by the next
// time, and who meets somebody three times in a row would also do so a fourth time.
constexpr int kAttempts = 3;

// Everything was undone because others were in the way, and nothing around the insertion was undone with it.
bool mayBeRepeated(const Store &store, ZelkResult result) {
  return result == ZELKERR_Datenbank && store.usable() && store.failure() == Failure::Retry &&
         store.transactionDepth() == 0;
}

void noteUnknownOutcome(const BATCHBUCHUNG &posting) {
  protocolLine(
      "Die Verbindung zum Datenbankserver ist beim Speichern der Buchung verloren gegangen; ob sie gespeichert "
      "ist, ließ sich nicht feststellen. Belegnummer: " +
      vlba98::toUtf8(posting.Belegnummer) + ", Kennung: " + posting.Kennung);
}

ZelkResult insert(ThreadContext &context, const ZELK_SPLITBUCHUNG *posting) {
  if (!posting) return ZELKERR_nicht_moeglich;
  postings::Construction &construction = postings::constructionOf(context);
  // A posting that the host inserts from under a dialog is none that was built piece by piece.
  const bool piecewise = construction.inserting && posting == &construction.posting;
  if (!construction.inserting) construction.resetExtras();
  postings::MissingRate missing{};
  std::optional<vlfn98::Wechselkurs> entered;
  for (int attempt = 1;;) {
    // Opened anew after a dialog, from under which the host may have called.
    Store *store = context.session();
    if (!store) return ZELKERR_Datenbank;
    ZelkResult opened = openClient(context, *store, posting->Mandantennummer);
    if (opened <= 0) return opened;
    postings::Insertion insertion(*store, *posting, piecewise ? &construction : nullptr);
    ZelkResult result = ZELKERR_Datenbank;
    if (entered) vlfn98::SpeichereKurs(*store, missing.currency, missing.day, *entered);
    {
      LockedTables locks(*store, kLockOrder, kReleaseOrder);
      // Hosts rely on it that a posting whose tables cannot be had in time is skipped without an error.
      if (!locks.held()) {
        if (!store->usable()) return ZELKERR_Datenbank;
        protocolLine(
            "Die Buchung wurde übersprungen: Die Tabellen des Mandanten sind gesperrt. Es wurde nichts gebucht.");
        return opened;
      }
      result = insertion.run();
    }
    if (result == ZELK_OK) notifyPosting(*store, insertion.stored());
    if (mayBeRepeated(*store, result) && attempt++ < kAttempts) continue;
    if (result == ZELKERR_Datenbank && store->outcomeUnknown()) noteUnknownOutcome(insertion.stored());
    // A person reads and answers without the locks, so that others go on posting.
    if (result == ZELKERR_kein_Kurs && !entered) {
      missing = insertion.missingRate();
      entered = postings::askForRate(missing, store->HoleFista().Waehrung);
      if (entered) continue;
    }
    const postings::Refusal &refusal = insertion.refusal();
    return refusal.message ? refuse(context, result, refusal.message, refusal.fill, refusal.line) : result;
  }
}

} // namespace

// The parameters of these exports are gathered in memory that may be wanting, before the frame is there to say so.

ZelkResult ZELK_CALL ZELK_SplitBuchungEinfuegen(const ZELK_SPLITBUCHUNG *Buchung, int32_t Fehlermeldungen) try {
  static constexpr Export self{.name = "ZELK_SplitBuchungEinfuegen"};
  std::vector<Parameter> parameters;
  if (Buchung) {
    std::span<const ZELK_TEILBUCHUNG> further;
    // Lines that a record has no room for lie in the thread's construction.
    if (ThreadContext *context = Buchung->Teilbuchungsanzahl > postings::kRecordLines ? threadContext() : nullptr)
      further = postings::constructionOf(*context).overflow;
    parameters = postings::parametersOf(*Buchung, further);
  }
  parameters.push_back(messages(Fehlermeldungen));
  return run(self, parameters, [&](ThreadContext *context) { return insert(*context, Buchung); });
} catch (...) {
  return ZELKERR_sonst;
}

ZelkResult ZELK_CALL ZELK_BuchungEinfuegen(const ZELK_BUCHUNG *Buchung, int32_t Fehlermeldungen) try {
  static constexpr Export self{.name = "ZELK_BuchungEinfuegen"};
  std::vector<Parameter> parameters;
  if (Buchung) parameters = postings::parametersOf(*Buchung);
  parameters.push_back(messages(Fehlermeldungen));
  return run(self, parameters, [&](ThreadContext *) -> ZelkResult {
    if (!Buchung) return ZELKERR_nicht_moeglich;
    ZELK_SPLITBUCHUNG split = postings::toSplit(*Buchung);
    return ZELK_SplitBuchungEinfuegen(&split, Fehlermeldungen);
  });
} catch (...) {
  return ZELKERR_sonst;
}

ZelkResult ZELK_CALL ZELK_BuchungEinfuegenDirekt(int32_t Fehlermeldungen, int32_t Mandantennummer, int32_t Stapelnummer,
                                                 const char *Belegdatum, const char *Belegnummer, const char *Text,
                                                 const char *Sollkonto, int32_t Sollart, const char *Habenkonto,
                                                 int32_t Habenart, const char *Bruttobetrag, const char *Steuersatz,
                                                 const char *Steuerbetrag, int32_t UStDirekt, int32_t Kostenschablone,
                                                 int32_t Zahlungsziel, int32_t Eroeffnungsbuchung,
                                                 int32_t Abschlussbuchung, const char *OPBelegnummer,
                                                 const char *Valutadatum, const char *Waehrung, int32_t Umbuchung,
                                                 const char *ESR, const char *Text2, const char *DMSID) try {
  static constexpr Export self{.name = "ZELK_BuchungEinfuegenDirekt"};
#define ARGUMENT(member, ...)                                                                                          \
  { offsetof(ZELK_BUCHUNG, member), member __VA_OPT__(, ) __VA_ARGS__ }
  const postings::FlatArgument arguments[] = {ARGUMENT(Mandantennummer),
                                              ARGUMENT(Stapelnummer),
                                              ARGUMENT(Belegdatum),
                                              ARGUMENT(Belegnummer),
                                              ARGUMENT(Text),
                                              ARGUMENT(Sollkonto),
                                              ARGUMENT(Sollart),
                                              ARGUMENT(Habenkonto),
                                              ARGUMENT(Habenart),
                                              ARGUMENT(Bruttobetrag),
                                              ARGUMENT(Steuersatz),
                                              ARGUMENT(Steuerbetrag),
                                              ARGUMENT(UStDirekt),
                                              ARGUMENT(Kostenschablone),
                                              ARGUMENT(Zahlungsziel, "Zahlungziel:"),
                                              ARGUMENT(Eroeffnungsbuchung),
                                              ARGUMENT(Abschlussbuchung),
                                              ARGUMENT(OPBelegnummer),
                                              ARGUMENT(Valutadatum),
                                              ARGUMENT(Waehrung),
                                              ARGUMENT(Umbuchung),
                                              ARGUMENT(ESR),
                                              ARGUMENT(Text2),
                                              ARGUMENT(DMSID)};
#undef ARGUMENT
  std::vector<Parameter> parameters = postings::parametersOf(arguments);
  parameters.insert(parameters.begin(), messages(Fehlermeldungen));
  return run(self, parameters, [&](ThreadContext *context) -> ZelkResult {
    Store *store = context->session();
    if (!store) return ZELKERR_Datenbank;
    if (ZelkResult opened = openClient(*context, *store, Mandantennummer); opened <= 0) return opened;
    ZELK_BUCHUNG posting = postings::toRecord(arguments);
    if (!postings::takeDate(posting.Belegdatum, Belegdatum))
      return refuse(*context, ZELKERR_uzl_Belegdatum, resources::kBuchungsdatumUnzulaessig);
    std::string_view value = vlba98::trimmed(Valutadatum ? Valutadatum : "");
    std::memset(posting.Valutadatum, 0, sizeof posting.Valutadatum);
    if (!value.empty() && !postings::takeDate(posting.Valutadatum, Valutadatum))
      return refuse(*context, ZELKERR_uzl_Valutadatum, resources::kValutadatumUnzulaessig);
    ZELK_SPLITBUCHUNG split = postings::toSplit(posting);
    return ZELK_SplitBuchungEinfuegen(&split, Fehlermeldungen);
  });
} catch (...) {
  return ZELKERR_sonst;
}
