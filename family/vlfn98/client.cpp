#include "vlfn98/client.h"

#include <cstring>

#include "vlfn98/fiscal_year.h"
#include "zelk98/zelk98.h"

using namespace vldb98;

namespace vlfn98 {

int32_t HoleMandantenDaten(Store &store, int64_t client) {
  if (client < 1 || client > UINT16_MAX) return ZELKERR_uzl_Mandnr;
  uint8_t found = 0;
  if (!store.SetzeFista(uint16_t(client), found)) return ZELKERR_Datenbank;
  if (!found) return ZELKERR_uzl_Mandnr;
  int16_t version = store.HoleFista().Version;
  if (version < kDataVersion) return ZELKERR_alter_Mandant;
  if (version > kDataVersion) return ZELKERR_neuerer_Mandant;
  return ZELK_OK;
}

BookableYear IsBuchjahr(Store &store, const vlba98::Datum &day, bool closedToo) {
  GESCHAEFTSJAHR year{};
  uint8_t found;
  if (!HoleGeschaeftsjahr(store, day, year, found)) return BookableYear::StoreFailed;
  if (!found || (year.Abgeschlossen && !closedToo)) return BookableYear::No;
  char code[3];
  if (!vlba98::itotwo(year.Jahr - vlba98::firstYear, code)) return BookableYear::StoreFailed;
  bool open = std::strcmp(code, store.HoleOpenJahr()) == 0 || store.SetzeOpenJahr(code);
  return open ? BookableYear::Yes : BookableYear::StoreFailed;
}

} // namespace vlfn98
