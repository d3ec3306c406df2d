#include "vlfn98/items.h"

#include "vlba98/text.h"

using namespace vldb98;

namespace vlfn98 {

const char *GetWaehrung(const FIRMENSTAMM &client, const char *code, int16_t index) {
  if (index > 0 && *code) return code;
  return index < 0 || client.Euro ? "EUR" : client.Waehrung;
}

Inkassonummern GetInkassoForderungsnummer(const OPBELEG &item) {
  if (!(item.Flags & kImInkasso)) return {};
  return {item.InkassoForderung, item.InkassoMahnkosten};
}

int HoleBenutzername(Store &store, int32_t number, char (&name)[41]) {
  DATENBANK record{};
  uint8_t found = 0;
  name[0] = 0;
  if (number != 0 && !store.UsedGet(record, KeyBuilder().number(number), found, kBenutzer)) return 0;
  if (found) vlba98::strncpy2(name, record.Benutzer.Name);
  return 1;
}

} // namespace vlfn98
