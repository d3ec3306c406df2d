/// Reading many records in one state of the database.
#pragma once

#include "store/guards.h"
#include "store/typed.h"
#include "zelk98/zelk98.h"

namespace frame {

/// Reads in a snapshot, which holds no table and stops no writer; a walk in it costs a third of one step by step.
/// \param read returns a result; on -3 what it began is rolled back
template <class Read> ZelkResult inSnapshot(vldb98::Store &store, Read &&read) {
  vldb98::Transaction reading(store, true);
  vldb98::must(reading.isOpen());
  const ZelkResult result = read();
  vldb98::must(reading.finish(result != ZELKERR_Datenbank));
  return result;
}

} // namespace frame
