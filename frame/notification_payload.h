/// What a change notification carries.
#pragma once

#include <cstddef>
#include <cstdint>

#include "store/store.h"
#include "zelk98/zelk98.h"

namespace frame {

/// What is new with the data of a change.
enum ChangeAction : int32_t { kNew = 1, kChanged = 2, kDeleted = 3 };

/// Kinds of data beside the account kinds ZELK_SACHKONTO, ZELK_KREDITOR and ZELK_DEBITOR.
constexpr int32_t kPostingChange = 16;

/// Lines that a posting's change has room for.
constexpr size_t kLinesPerChange = 10;

/// The block of a change.
/// \param record in the store's layout of the kind; null: no payload. A posting without a number: all of its batch
/// \param store  the session with the posting's lines in memory and its client open; null: none
/// \param start  first of the lines
ZELK_OUT_BLOCK changeBlock(int32_t action, int32_t kind, int32_t value, const void *record, vldb98::Store *store,
                           size_t start);

} // namespace frame
