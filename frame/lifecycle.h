/// Attach and detach of the library, and what both leave for the whole process.
#pragma once

#include <atomic>
#include <string>

#include "zelk98/zelk98.h"

namespace frame {

/// Settings that are read at attach. Paths are UTF-8 and end with a separator.
struct ProgramSettings {
  std::string programDirectory;
  std::string reportDirectory; ///< empty when none is set
  bool totalRecall = false;    ///< the call protocol is never emptied
  bool noFiscalYearCheck = false;
  bool basicEdition = false; ///< without foreign currencies and cost accounting
};

/// 0 before the first attach; 1 attached; -36 or -42 while or after an attach that failed.
ZelkResult initialisationStatus();

/// Set by ZELK_SQLDeInit for the rest of the process.
bool detached();
void setDetached();

const ProgramSettings &programSettings();

} // namespace frame
