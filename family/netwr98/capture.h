/// Document capture: cost assignments that came with a captured document.
#pragma once

#include <cstdint>

#include "store/store.h"

namespace netwr98 {

/// Whether document capture assigned costs to a document of the open client. \param document number of its
/// document-management link; 0: no document
bool OCR_IsBelegkontierungAktiv(vldb98::Store &store, int32_t document);

/// The cost template that document capture assigned to a document; 0: none.
int32_t OCR_GetBucDlg(vldb98::Store &store, int32_t document);

} // namespace netwr98
