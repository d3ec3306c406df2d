#include "vlfn98/items.h"

#include "store/typed.h"
#include "vlba98/text.h"

using namespace vldb98;

namespace vlfn98 {

const char *GetWaehrung(const FIRMENSTAMM &client, const char *code, int16_t index) {
  if (index > 0 && *code) return code;
  return index < 0 || client.Euro ? "EUR" : client.Waehrung;
}

CollectionNumbers GetInkassoForderungsnummer(const OPBELEG &item) {
  if (!(item.Flags & kInCollection)) return {};
  return {item.InkassoForderung, item.InkassoMahnkosten};
}

void readUserName(Store &store, int32_t number, char (&name)[41]) {
  const auto user = number != 0 ? find<BENUTZER>(store, number) : std::nullopt;
  vlba98::strncpy2(name, user ? user->Name : "");
}

} // namespace vlfn98
