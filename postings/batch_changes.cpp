// Creating, changing and deleting batches.
#include <string>

#include "frame/call.h"
#include "frame/client.h"
#include "frame/locked_tables.h"
#include "frame/notification.h"
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

// What a host asks for.
struct Request {
  int32_t action, number;
  std::string name; // without the white space around it
  int32_t recurrence, transitory, reconciliation;
};

ZelkResult readBatch(Store &store, int32_t number, STAPEL &batch, bool &exists) {
  DATENBANK record{};
  uint8_t found;
  if (!store.UsedGet(record, KeyBuilder().number(number), found, kStapel)) return ZELKERR_Datenbank;
  exists = found;
  if (found) batch = record.Stapel;
  return ZELK_OK;
}

// The record to start from: a new one, or the stored one.
Outcome startingRecord(Store &store, const Request &request, STAPEL &batch) {
  bool exists = false;
  if (request.number != 0)
    if (ZelkResult read = readBatch(store, request.number, batch, exists); read != ZELK_OK) return {read};
  if (request.action == kCreate) {
    if (request.number < 0) return {ZELKERR_uzl_Stapelnr, resources::kDieIstUnzulaessig, "Stapelnummer"};
    if (exists) return {ZELKERR_uzl_Stapelnr, resources::kStapelnummerVergeben};
    batch = {};
    batch.Nr = request.number;
    batch.VonExtern = 1;
    return {};
  }
  if (exists && batch.Pflicht) return {ZELKERR_uzl_Stapelnr, resources::kPflichtstapel};
  if (!exists) return {ZELKERR_uzl_Stapelnr, resources::kZuAendernderStapelFehlt};
  if (batch.Passwort[0]) return {ZELKERR_StapelPasswort, resources::kStapelPasswortAendern};
  return {};
}

Outcome checkUniqueName(Store &store, const Request &request) {
  DATENBANK record{};
  uint8_t found;
  int done = store.GetFirstExt(record, found, kStapel);
  while (done && found) {
    const STAPEL &other = record.Stapel;
    if (request.name == other.Name && !(request.action == kChange && other.Nr == request.number))
      return {ZELKERR_uzl_Name, resources::kStapelnameVergeben, request.name};
    done = store.GetNextExt(record, found, kStapel);
  }
  return {done ? ZELK_OK : ZELKERR_Datenbank};
}

// With the batch table locked.
Outcome save(Store &store, const Request &request) {
  DATENBANK record{};
  STAPEL &batch = record.Stapel;
  if (Outcome start = startingRecord(store, request, batch); start.result != ZELK_OK) return start;
  if (Outcome name = checkUniqueName(store, request); name.result != ZELK_OK) return name;
  if (request.recurrence < 0 || request.recurrence > kGreatestRecurrence)
    return {ZELKERR_uzl_StapelWiederkehr, resources::kStapelWiederkehr};
  vlba98::strncpy2(batch.Name, request.name);
  batch.Wiederkehr = int16_t(request.recurrence);
  batch.Transitorisch = request.transitory != 0;
  batch.Abstimm0 = request.reconciliation != 0;
  if (request.action == kCreate) return {store.Insert(record, kStapel) ? ZELK_OK : ZELKERR_Datenbank};
  // The search for the name has gone on from the batch.
  STAPEL stored;
  bool exists = false;
  ZelkResult read = readBatch(store, request.number, stored, exists);
  bool written = read == ZELK_OK && exists && store.Update(record, kStapel);
  return {written ? ZELK_OK : ZELKERR_Datenbank};
}

// The batch becomes the current record of its table.
Outcome checkDeletable(Store &store, int32_t number) {
  STAPEL batch{};
  bool exists = false;
  if (ZelkResult read = readBatch(store, number, batch, exists); read != ZELK_OK) return {read};
  if (!exists) return {ZELKERR_uzl_Stapelnr, resources::kStapelFehlt};
  if (!batch.VonExtern) return {ZELKERR_uzl_Stapelnr, resources::kStapelNichtVonExtern};
  if (batch.Gecleart) return {ZELKERR_uzl_Stapelnr, resources::kStapelGecleart};
  if (batch.Passwort[0]) return {ZELKERR_uzl_Stapelnr, resources::kStapelPasswortLoeschen};
  return {};
}

// With all tables of a batch locked.
Outcome remove(Store &store, int32_t number, bool withBatch) {
  if (Outcome checked = checkDeletable(store, number); checked.result != ZELK_OK) return checked;
  Transaction deletion(store, false);
  // The batch stays the current record of its table.
  bool done = deletion.isOpen() && store.EmptyBat(number) && (!withBatch || store.Delete(kStapel));
  return {deletion.finish(done) ? ZELK_OK : ZELKERR_Datenbank};
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
               Store *store = context->session();
               if (!store) return ZELKERR_Datenbank;
               if (ZelkResult opened = openClient(*context, *store, Mandantennummer); opened <= 0) return opened;
               if (Aktion != kCreate && Aktion != kChange)
                 return refuse(*context, ZELKERR_uzl_Aktion, resources::kUnzulaessigeAktion);
               std::string name = Stapelname ? Stapelname : "";
               if (name.size() > kNameWidth) return refuse(*context, ZELKERR_uzl_Name, resources::kNameZuLang);
               vlba98::KillWhiteSpaces(name.data());
               name.resize(std::char_traits<char>::length(name.c_str()));
               if (name.empty()) return refuse(*context, ZELKERR_uzl_Name, resources::kNameLeer);
               Request request{Aktion, Stapelnummer, std::move(name), Wiederkehr, Transitorisch, Abstimm0};
               return changeLocked(*context, *store, kBatchTable, [&] { return save(*store, request); });
             });
}

ZelkResult ZELK_CALL ZELK_LoescheStapel(int32_t Mandant, int32_t Stapel, int32_t mitStapel, int32_t Fehlermeldungen) {
  static constexpr Export self{.name = "ZELK_LoescheStapel"};
  return run(self,
             {number("Mandant:", Mandant), number("Stapel:", Stapel), number("mit Stapel:", mitStapel),
              messages(Fehlermeldungen)},
             [&](ThreadContext *context) -> ZelkResult {
               Store *store = context->session();
               if (!store) return ZELKERR_Datenbank;
               if (ZelkResult opened = openClient(*context, *store, Mandant); opened <= 0) return opened;
               // What is refused waits for nobody. Until the tables are locked the batch may change, so it is looked at
               // again then.
               if (Outcome checked = checkDeletable(*store, Stapel); checked.result != ZELK_OK)
                 return checked.message ? refuse(*context, checked.result, checked.message) : checked.result;
               ZelkResult result = changeLocked(*context, *store, kDeletionTables,
                                                [&] { return remove(*store, Stapel, mitStapel != 0); });
               if (result == ZELK_OK) notifyBatchEmptied(*store, Stapel);
               return result;
             });
}
