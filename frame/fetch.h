/// Fetches of the shared kind: a table walked record by record across calls.
#pragma once

#include <optional>

#include "frame/context.h"
#include "zelk98/zelk98.h"

namespace frame {

/// Starts a fetch in the open client and year; its kind is the table of the file number. What ran before has ended.
/// \param from first key to be delivered; null: from the start
/// \param none result when there is no record
/// \return 1, or none
ZelkResult startFetch(ThreadContext &context, vldb98::Store &store, vldb98::FileNumber file,
                      const vldb98::SCHLUESSEL *from, ZelkResult none);

/// The session with the client and year of the running fetch open, whatever the thread did in between.
vldb98::Store &resumeFetch(ThreadContext &context);

/// The record that follows the pending one, in the session resumed. The fetch stays where it is.
std::optional<vldb98::DATENBANK> readFollowing(const SharedFetch &fetch, vldb98::Store &store);

/// The same for a fetch that is to be on a kind and to have a pending record, and ends when the store fails.
/// \return 1; 2 when none follows; or that the fetch is not so
ZelkResult readNext(ThreadContext &context, int32_t kind, vldb98::DATENBANK &next);

/// Delivers the pending record and moves on to the next one.
/// \param kind    table number that the fetch must be on
/// \param deliver called with the record, after the next one was read
template <class Deliver> ZelkResult deliverNext(ThreadContext &context, int32_t kind, Deliver &&deliver) {
  vldb98::DATENBANK next{};
  ZelkResult result = readNext(context, kind, next);
  if (result < 0) return result;
  deliver(context.fetch.record);
  context.fetch.pending = result == ZELK_OK;
  if (context.fetch.pending) context.fetch.record = next;
  return result;
}

} // namespace frame
