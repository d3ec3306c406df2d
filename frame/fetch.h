/// Fetches of the shared kind: a table walked record by record across calls.
#pragma once

#include "frame/context.h"
#include "zelk98/zelk98.h"

namespace frame {

/// Opens a client for a call that shows its refusals: "Der Mandant existiert nicht!".
/// \return 1, or the result that the call returns
ZelkResult openClient(ThreadContext &context, vldb98::Store &store, int32_t client);

/// Starts a fetch in the open client and year; its kind is the table of the file number. What ran before has ended.
/// \param from first key to be delivered; null: from the start
/// \param none result when there is no record
ZelkResult startFetch(ThreadContext &context, vldb98::Store &store, vldb98::FileNumber file,
                      const vldb98::SCHLUESSEL *from, ZelkResult none);

/// Delivers the pending record and reads the next one, from where the fetch stands, whatever the thread did in between.
/// \param kind table number that the fetch must be on
/// \param deliver called with the record, after the read ahead succeeded
template <class Deliver> ZelkResult deliverNext(ThreadContext &context, int32_t kind, Deliver &&deliver);

/// For fetches that need more than that: the session with the client and year of the running fetch open. \return null
/// when the store failed
vldb98::Store *resumeFetch(ThreadContext &context);

/// Reads the record behind the pending one, in the session resumed. The fetch stays where it is.
/// \return 1, 2 when there is none, -3
ZelkResult readBehind(const SharedFetch &fetch, vldb98::Store &store, vldb98::DATENBANK &next);

namespace detail {
ZelkResult readAhead(ThreadContext &context, int32_t kind, vldb98::DATENBANK &next);
}

template <class Deliver> ZelkResult deliverNext(ThreadContext &context, int32_t kind, Deliver &&deliver) {
  vldb98::DATENBANK next{};
  ZelkResult result = detail::readAhead(context, kind, next);
  if (result < 0) return result;
  deliver(context.fetch.record);
  context.fetch.pending = result == ZELK_OK;
  if (context.fetch.pending) context.fetch.record = next;
  return result;
}

} // namespace frame
