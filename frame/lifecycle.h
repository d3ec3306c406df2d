/// Attach and detach of the library.
#pragma once

namespace frame {

/// Attaches the library when it is not attached; a failed attach counts as one, and the initialisation status tells
/// what came of it. May show a message. Costs a look at a flag when there is nothing to do. \param connect whether the
/// default connection is to be opened
void attach(bool connect);

/// Gives back what the attach took: the call protocol, the notification process, the calling thread's context, the
/// record store. Those of other threads are freed when they end.
void detach();

} // namespace frame
