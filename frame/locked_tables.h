/// Changes of tables that nobody else may touch meanwhile.
#pragma once

#include <span>

#include "frame/messages.h"
#include "store/guards.h"

namespace frame {

/// Runs a change while the tables are locked, and shows its refusal when they are free again.
/// \param change returns an Outcome
/// \return its result; -3 when a table cannot be had in time
template <class Change>
ZelkResult changeLocked(const ThreadContext &context, vldb98::Store &store, std::span<const vldb98::FileNumber> tables,
                        Change &&change) {
  Outcome outcome;
  {
    vldb98::LockedTables locked(store, tables);
    if (!locked.held()) return ZELKERR_Datenbank;
    outcome = change();
  }
  return finish(context, outcome);
}

} // namespace frame
