/// What a posting carries beside accounts and amounts: payment term, payment-slip reference, document link.
#pragma once

#include <cstdint>
#include <string_view>

#include "store/store.h"
#include "vlfn98/terms.h"

namespace vlfn98 {

/// Whether a reference number of the Swiss payment slip is right: 16 or 27 digits, blanks between them not counted, the
/// last one the check digit.
/// \par Source
/// Modulo 10, recursive: Swiss Implementation Guidelines for the QR-bill, annex B.
bool CheckEsr(std::string_view reference);

/// The number of a document-management identifier of the open client; it is registered when it is new.
int32_t DmsInsertDmsID(vldb98::Store &store, const char *identifier);

/// The identifier of a number; empty when there is none.
void DmsGetDmsID(vldb98::Store &store, int32_t number, char (&identifier)[51]);

} // namespace vlfn98
