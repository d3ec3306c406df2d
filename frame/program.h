/// The state of the process: whether the library is initialised, and the program whose interface it is.
#pragma once

#include <string>

#include "zelk98/zelk98.h"

namespace frame {

/// Settings that are read at attach. Paths are UTF-8 and end with a separator.
struct ProgramSettings {
  std::string programDirectory; ///< empty when none is set, which fails the attach
  std::string reportDirectory;  ///< empty when none is set
  bool totalRecall = false;     ///< the call protocol is never emptied
  bool noFiscalYearCheck = false;
  bool basicEdition = false; ///< without foreign currencies and cost accounting
};

/// Those of the last attach.
const ProgramSettings &programSettings();

/// 0 before the first attach; 1 attached; -36 or -42 while or after an attach that failed.
ZelkResult initialisationStatus();

/// Set by ZELK_SQLDeInit for the rest of the process.
bool detached();
void setDetached();

/// For attach and detach.
void setProgramSettings(ProgramSettings settings);
void setInitialisationStatus(ZelkResult status);

} // namespace frame
