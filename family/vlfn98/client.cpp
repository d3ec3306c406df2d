#include "vlfn98/client.h"

#include "store/typed.h"
#include "vlfn98/fiscal_year.h"
#include "zelk98/zelk98.h"

using namespace vldb98;

namespace vlfn98 {

int32_t HoleMandantenDaten(Store &store, int64_t client) {
  if (client < 1 || client > UINT16_MAX) return ZELKERR_uzl_Mandnr;
  uint8_t found = 0;
  must(store.SetzeFista(uint16_t(client), found));
  if (!found) return ZELKERR_uzl_Mandnr;
  int16_t version = store.HoleFista().Version;
  if (version < kDataVersion) return ZELKERR_alter_Mandant;
  if (version > kDataVersion) return ZELKERR_neuerer_Mandant;
  return ZELK_OK;
}

bool IsBuchjahr(Store &store, const vlba98::Date &day, bool closedToo) {
  const auto year = findFiscalYear(store, day);
  if (!year || (year->Abgeschlossen && !closedToo)) return false;
  openFiscalYear(store, *year);
  return true;
}

} // namespace vlfn98
