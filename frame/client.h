/// The client whose books a call is about.
#pragma once

#include "frame/context.h"
#include "frame/outcome.h"
#include "zelk98/zelk98.h"

namespace frame {

/// Opens a client in the session. \return 1; "Der Mandant existiert nicht!", still to be shown
Outcome openQuietly(vldb98::Store &store, int32_t client);

/// The same with the refusal shown. \return 1, or the result that the call returns
ZelkResult openClient(const ThreadContext &context, vldb98::Store &store, int32_t client);

} // namespace frame
