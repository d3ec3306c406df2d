#include "netwr98/capture.h"

#include "store/typed.h"

using namespace vldb98;

namespace netwr98 {

int32_t OCR_GetBucDlg(Store &store, int32_t document) {
  const auto link = document != 0 ? find<DMS_ID>(store, document) : std::nullopt;
  return link ? link->Kostenschablone : 0;
}

bool OCR_IsBelegkontierungAktiv(Store &store, int32_t document) {
  return OCR_GetBucDlg(store, document) != 0;
}

} // namespace netwr98
