#include "frame/fetch.h"

#include <cstring>

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

ZelkResult startFetch(ThreadContext &context, Store &store, FileNumber file, const SCHLUESSEL *from, ZelkResult none) {
  context.fetch.end();
  DATENBANK first{};
  uint8_t found;
  int done = from ? store.GetGeExt(first, *from, found, file, ZELK_ENG_DEFAULT, kWalkSelector)
                  : store.GetFirstExt(first, found, file, ZELK_ENG_DEFAULT, kWalkSelector);
  if (!done) return ZELKERR_Datenbank;
  if (!found) return none;
  context.fetch.begin(store, file, first);
  return ZELK_OK;
}

Store *resumeFetch(ThreadContext &context) {
  Store *store = context.session();
  return store && reopen(*store, context.fetch) ? store : nullptr;
}

ZelkResult readFollowing(const SharedFetch &fetch, Store &store, DATENBANK &next) {
  store.setCurrent(fetch.record, fetch.file);
  uint8_t found;
  if (!store.GetNextExt(next, found, fetch.file)) return ZELKERR_Datenbank;
  return found ? ZELK_OK : ZELK_letzterDatensatz;
}

ZelkResult readNext(ThreadContext &context, int32_t kind, DATENBANK &next) {
  SharedFetch &fetch = context.fetch;
  if (fetch.kind != kind) return ZELKERR_keinInit;
  if (!fetch.pending) return ZELKERR_keinDatensatz;
  Store *store = resumeFetch(context);
  ZelkResult result = store ? readFollowing(fetch, *store, next) : ZELKERR_Datenbank;
  if (result < 0) fetch.end();
  return result;
}

} // namespace frame
