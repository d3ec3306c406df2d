/// Reading many records in one state of the database.
#pragma once

#include "store/guards.h"
#include "zelk98/zelk98.h"

namespace frame {

/// Reads in a snapshot, which holds no table and stops no writer; a walk in it costs a third of one step by step.
/// \param read returns a result; -3 when the store failed
template <class Read> ZelkResult inSnapshot(vldb98::Store &store, Read &&read) {
  vldb98::Transaction reading(store, true);
  if (!reading.isOpen()) return ZELKERR_Datenbank;
  const ZelkResult result = read();
  return reading.finish(result != ZELKERR_Datenbank) ? result : ZELKERR_Datenbank;
}

} // namespace frame
