// Creating, changing and deleting batches.
#include <string>

#include "frame/call.h"
#include "frame/client.h"
#include "frame/locked_tables.h"
#include "frame/notification.h"
#include "store/typed.h"
#include "vlba98/text.h"

using namespace frame;
using namespace vldb98;

namespace {

enum Action { kCreate = 1, kChange = 2 };

constexpr int32_t kGreatestRecurrence = 99;
constexpr size_t kNameWidth = sizeof(STAPEL::Name) - 1;
constexpr FileNumber kBatchTable[] = {kStapel};
// In the order of a posting, so that the two never wait for each other.
constexpr FileNumber kDeletionTables[] = {kBatchbuchung, kSplit, kStapel, kKobu};

// A batch as a host wants it to be.
struct WantedBatch {
  int32_t action, number;
  std::string name; // without the white space around it
  int32_t recurrence, transitory, reconciliation;
};

// The record to start from: a new one, or the stored one.
Outcome startingRecord(Store &store, const WantedBatch &wanted, STAPEL &batch) {
  const auto stored = wanted.number != 0 ? find<STAPEL>(store, wanted.number) : std::nullopt;
  if (wanted.action == kCreate) {
    if (wanted.number < 0) return {ZELKERR_uzl_Stapelnr, resources::kIsInadmissibleFeminine, "Stapelnummer"};
    if (stored) return {ZELKERR_uzl_Stapelnr, resources::kBatchNumberTaken};
    batch = {};
    batch.Nr = wanted.number;
    batch.VonExtern = 1;
    return {};
  }
  if (!stored) return {ZELKERR_uzl_Stapelnr, resources::kChangedBatchMissing};
  if (stored->Pflicht) return {ZELKERR_uzl_Stapelnr, resources::kStandardBatch};
  if (stored->Passwort[0]) return {ZELKERR_StapelPasswort, resources::kBatchPasswordChange};
  batch = *stored;
  return {};
}

bool nameInUse(Store &store, const WantedBatch &wanted) {
  bool inUse = false;
  forEach<STAPEL>(store, [&](const STAPEL &other) {
    const bool itself = wanted.action == kChange && other.Nr == wanted.number;
    return !(inUse = wanted.name == other.Name && !itself);
  });
  return inUse;
}

// With the batch table locked.
Outcome save(Store &store, const WantedBatch &wanted) {
  STAPEL batch;
  if (Outcome start = startingRecord(store, wanted, batch); start.result != ZELK_OK) return start;
  if (nameInUse(store, wanted)) return {ZELKERR_uzl_Name, resources::kBatchNameTaken, wanted.name};
  if (wanted.recurrence < 0 || wanted.recurrence > kGreatestRecurrence)
    return {ZELKERR_uzl_StapelWiederkehr, resources::kBatchRecurrence};
  vlba98::strncpy2(batch.Name, wanted.name);
  batch.Wiederkehr = int16_t(wanted.recurrence);
  batch.Transitorisch = wanted.transitory != 0;
  batch.Abstimm0 = wanted.reconciliation != 0;
  if (wanted.action == kCreate) {
    insert(store, batch);
  } else {
    // The search for the name has gone on from the batch.
    must(find<STAPEL>(store, wanted.number).has_value());
    update(store, batch);
  }
  return {};
}

// The batch becomes the current record of its table.
Outcome checkDeletable(Store &store, int32_t number) {
  const auto batch = find<STAPEL>(store, number);
  if (!batch) return {ZELKERR_uzl_Stapelnr, resources::kBatchMissing};
  if (!batch->VonExtern) return {ZELKERR_uzl_Stapelnr, resources::kBatchNotFromOutside};
  if (batch->Gecleart) return {ZELKERR_uzl_Stapelnr, resources::kBatchCleared};
  if (batch->Passwort[0]) return {ZELKERR_uzl_Stapelnr, resources::kBatchPasswordDeletion};
  return {};
}

// With all tables of a batch locked.
Outcome remove(Store &store, int32_t number, bool withBatch) {
  if (Outcome checked = checkDeletable(store, number); checked.result != ZELK_OK) return checked;
  Transaction deletion(store, false);
  must(deletion.isOpen() && store.EmptyBat(number));
  // The batch has stayed the current record of its table.
  must(!withBatch || store.Delete(kStapel));
  must(deletion.commit());
  return {};
}

} // namespace

ZelkResult ZELK_CALL ZELK_Stapel(int32_t Aktion, int32_t Mandantennummer, int32_t Stapelnummer, const char *Stapelname,
                                 int32_t Wiederkehr, int32_t Transitorisch, int32_t Abstimm0, int32_t Fehlermeldungen) {
  static constexpr Export self{.name = "ZELK_Stapel"};
  return run(self,
             {number("Aktion:", Aktion), number("Mandantennummer:", Mandantennummer),
              number("Stapelnummer:", Stapelnummer), text("Stapelname:", Stapelname), number("Wiederkehr:", Wiederkehr),
              number("Transitoerisch:", Transitorisch), number("Abstimm0:", Abstimm0), messages(Fehlermeldungen)},
             [&](ThreadContext *context) -> ZelkResult {
               Store &store = context->store();
               if (ZelkResult opened = openClient(*context, store, Mandantennummer); opened <= 0) return opened;
               if (Aktion != kCreate && Aktion != kChange)
                 return refuse(*context, ZELKERR_uzl_Aktion, resources::kActionInadmissible);
               std::string name = Stapelname ? Stapelname : "";
               if (name.size() > kNameWidth) return refuse(*context, ZELKERR_uzl_Name, resources::kNameTooLong);
               vlba98::KillWhiteSpaces(name.data());
               name.resize(std::char_traits<char>::length(name.c_str()));
               if (name.empty()) return refuse(*context, ZELKERR_uzl_Name, resources::kNameEmpty);
               WantedBatch wanted{Aktion, Stapelnummer, std::move(name), Wiederkehr, Transitorisch, Abstimm0};
               return changeLocked(*context, store, kBatchTable, [&] { return save(store, wanted); });
             });
}

ZelkResult ZELK_CALL ZELK_LoescheStapel(int32_t Mandant, int32_t Stapel, int32_t mitStapel, int32_t Fehlermeldungen) {
  static constexpr Export self{.name = "ZELK_LoescheStapel"};
  return run(self,
             {number("Mandant:", Mandant), number("Stapel:", Stapel), number("mit Stapel:", mitStapel),
              messages(Fehlermeldungen)},
             [&](ThreadContext *context) -> ZelkResult {
               Store &store = context->store();
               if (ZelkResult opened = openClient(*context, store, Mandant); opened <= 0) return opened;
               // What is refused waits for nobody. Until the tables are locked the batch may change, so it is looked at
               // again then.
               if (Outcome checked = checkDeletable(store, Stapel); checked.result != ZELK_OK)
                 return refuse(*context, checked.result, checked.message);
               ZelkResult result = changeLocked(*context, store, kDeletionTables,
                                                [&] { return remove(store, Stapel, mitStapel != 0); });
               if (result == ZELK_OK) notifyBatchEmptied(store, Stapel);
               return result;
             });
}
