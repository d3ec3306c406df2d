/// Changes of tables that nobody else may touch meanwhile.
#pragma once

#include <span>
#include <string>

#include "frame/messages.h"
#include "store/guards.h"

namespace frame {

/// What a change came to; with a message where the caller is told more than the code.
struct Outcome {
  ZelkResult result = ZELK_OK;
  int message = 0;
  std::string fill = {}; ///< Windows-1252
};

/// Runs a change while the tables are locked, and shows its refusal when they are free again: a person who looks at a
/// message box must not keep others from working.
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
  return outcome.message ? refuse(context, outcome.result, outcome.message, outcome.fill) : outcome.result;
}

} // namespace frame
