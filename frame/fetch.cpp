#include "frame/fetch.h"

#include <cstring>

#include "store/typed.h"
#include "vlfn98/client.h"

using namespace vldb98;

namespace frame {
namespace {

// The lock selector that account walks have always passed.
constexpr int32_t kWalkSelector = 5;

} // namespace

ZelkResult startFetch(ThreadContext &context, Store &store, FileNumber file, const SCHLUESSEL *from, ZelkResult none) {
  context.fetch.end();
  const In walked{store, file, kWalkSelector};
  const auto begin = from ? atLeast<DATENBANK>(walked, *from) : first<DATENBANK>(walked);
  if (!begin) return none;
  context.fetch.begin(store, file, *begin);
  return ZELK_OK;
}

Store &resumeFetch(ThreadContext &context) {
  Store &store = context.store();
  const SharedFetch &fetch = context.fetch;
  if (store.HoleFista().Nummer != fetch.client) must(vlfn98::HoleMandantenDaten(store, fetch.client) == ZELK_OK);
  if (std::strcmp(store.HoleOpenJahr(), fetch.year) != 0) must(store.SetzeOpenJahr(fetch.year));
  return store;
}

std::optional<DATENBANK> readFollowing(const SharedFetch &fetch, Store &store) {
  store.setCurrent(fetch.record, fetch.file);
  return next<DATENBANK>({store, fetch.file});
}

ZelkResult readNext(ThreadContext &context, int32_t kind, DATENBANK &next) {
  SharedFetch &fetch = context.fetch;
  if (fetch.kind != kind) return ZELKERR_keinInit;
  if (!fetch.pending) return ZELKERR_keinDatensatz;
  try {
    const auto following = readFollowing(fetch, resumeFetch(context));
    if (following) next = *following;
    return following ? ZELK_OK : ZELK_letzterDatensatz;
  } catch (const StoreFailed &) {
    fetch.end();
    throw;
  }
}

} // namespace frame
