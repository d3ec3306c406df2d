#include "frame/fetch.h"

#include <cstring>

#include "frame/messages.h"
#include "vlba98/text.h"
#include "vlfn98/client.h"

using namespace vldb98;

namespace frame {
namespace {

// The lock selector that account walks have always passed.
constexpr int32_t kWalkSelector = 5;

bool reopen(Store &store, const SharedFetch &fetch) {
  if (store.HoleFista().Nummer != fetch.client && vlfn98::HoleMandantenDaten(store, fetch.client) != ZELK_OK)
    return false;
  return std::strcmp(store.HoleOpenJahr(), fetch.year) == 0 || store.SetzeOpenJahr(fetch.year);
}

} // namespace

ZelkResult openClient(ThreadContext &context, Store &store, int32_t client) {
  int32_t opened = vlfn98::HoleMandantenDaten(store, client);
  if (opened > 0 || opened == ZELKERR_Datenbank) return opened;
  return refuse(context, opened, resources::kGibtEsNicht, "Mandant");
}

ZelkResult startFetch(ThreadContext &context, Store &store, FileNumber file, const SCHLUESSEL *from, ZelkResult none) {
  context.fetch.end();
  SharedFetch started;
  started.kind = tableOf(file);
  started.file = file;
  started.client = store.HoleFista().Nummer;
  vlba98::strncpy2(started.year, store.HoleOpenJahr());
  uint8_t found;
  int done = from ? store.GetGeExt(started.record, *from, found, file, ZELK_ENG_DEFAULT, kWalkSelector)
                  : store.GetFirstExt(started.record, found, file, ZELK_ENG_DEFAULT, kWalkSelector);
  if (!done) return ZELKERR_Datenbank;
  if (!found) return none;
  started.pending = true;
  context.fetch = started;
  return ZELK_OK;
}

ZelkResult detail::readAhead(ThreadContext &context, int32_t kind, DATENBANK &next) {
  SharedFetch &fetch = context.fetch;
  if (fetch.kind != kind) return ZELKERR_keinInit;
  if (!fetch.pending) return ZELKERR_keinDatensatz;
  Store *store = context.session();
  uint8_t found = 0;
  if (store && reopen(*store, fetch)) {
    store->setCurrent(fetch.record, fetch.file);
    if (store->GetNextExt(next, found, fetch.file, ZELK_ENG_DEFAULT)) return found ? ZELK_OK : ZELK_letzterDatensatz;
  }
  context.fetch.end();
  return ZELKERR_Datenbank;
}

} // namespace frame
