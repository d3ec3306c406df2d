/// A posting into the books, in as many attempts as it takes: the tables locked, a missing rate asked for, the refusal
/// shown.
#pragma once

#include "frame/call.h"
#include "postings/posting.h"

namespace postings {

/// The export that takes a posting in; it stands in the call protocol for every other way of handing one over as well.
inline constexpr frame::Export kInsertingExport{.name = "ZELK_SplitBuchungEinfuegen"};

enum class Client : uint8_t { IsToBeOpened, IsOpen };

/// Inserts a posting in the body of kInsertingExport.
/// \return what the export returns
ZelkResult insert(frame::ThreadContext &context, const Posting &posting, Client client = Client::IsToBeOpened);

/// The same from the body of another export, with the entry and the checks of kInsertingExport.
ZelkResult insertWithin(frame::ThreadContext &context, const Posting &posting, int32_t Fehlermeldungen,
                        Client client = Client::IsToBeOpened);

} // namespace postings
