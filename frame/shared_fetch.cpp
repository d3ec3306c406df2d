#include "frame/shared_fetch.h"

#include <utility>

#include "vlba98/text.h"

using namespace vldb98;

namespace frame {

void SharedFetch::begin(const Store &store, FileNumber walked, const DATENBANK &first, std::any kept) {
  own = std::move(kept);
  moveTo(store, walked, first);
}

void SharedFetch::moveTo(const Store &store, FileNumber walked, const DATENBANK &next) {
  kind = tableOf(walked);
  pending = true;
  file = walked;
  record = next;
  client = store.HoleFista().Nummer;
  vlba98::strncpy2(year, store.HoleOpenJahr());
}

} // namespace frame
