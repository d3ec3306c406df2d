/// Notification of dependent applications: what changed is handed to one process, which passes it on.
#pragma once

#include <cstdint>

#include "store/store.h"

namespace frame {

/// Starts the notification process when applications are registered and it does not run yet. \return false when that
/// failed, which the user is still to be told
bool startNotification() noexcept;

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
