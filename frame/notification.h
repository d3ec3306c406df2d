/// Notification of dependent applications: what changed is handed to one process, which passes it on.
#pragma once

#include <cstdint>

#include "store/store.h"

namespace frame {

/// Starts the notification process when applications are registered and it does not run yet. \return false when that
/// failed, which the user is still to be told
bool startNotification() noexcept;

/// Ends the notification process; waits for it to be done with its last change, and shows a message when it is not.
void endNotification() noexcept;

/// Hands one change over, as ZELK_Out tells it.
/// \param record in the store's layout of the kind; null: no payload. A posting without a number: all of its batch
/// \param start  first of a posting's lines
void notifyChange(int32_t action, int32_t kind, int32_t client, const void *record, int16_t start) noexcept;

/// Hands a posting over that the session has just stored and whose lines are still in its memory, ten lines at a time.
/// To be called without locks: it may wait for the notification process, and show a message. Without registered
/// applications it costs a look at a flag.
void notifyPosting(vldb98::Store &store, const vldb98::BATCHBUCHUNG &posting) noexcept;

/// Hands over that all postings of a batch of the open client were deleted, at the same conditions.
void notifyBatchEmptied(const vldb98::Store &store, int32_t batch) noexcept;

/// Hands a personal account of the open client over that was changed, at the same conditions.
/// \param kind ZELK_KREDITOR, ZELK_DEBITOR
void notifyAccount(const vldb98::Store &store, int32_t kind, const vldb98::PERSONENKONTO &account) noexcept;

} // namespace frame
