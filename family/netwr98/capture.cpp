#include "netwr98/capture.h"

using namespace vldb98;

namespace netwr98 {

int OCR_GetBucDlg(Store &store, int32_t document, int32_t &costTemplate) {
  DATENBANK record{};
  uint8_t found = 0;
  costTemplate = 0;
  if (document == 0) return 1;
  if (!store.UsedGet(record, KeyBuilder().number(document), found, kDmsId)) return 0;
  if (found) costTemplate = record.DmsId.Kostenschablone;
  return 1;
}

int OCR_IsBelegkontierungAktiv(Store &store, int32_t document, uint8_t &active) {
  int32_t costTemplate;
  int done = OCR_GetBucDlg(store, document, costTemplate);
  active = done && costTemplate != 0;
  return done;
}

} // namespace netwr98
