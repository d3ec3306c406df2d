/// What a piece of work came to, before anybody is told.
#pragma once

#include <string>

#include "zelk98/zelk98.h"

namespace frame {

/// A result; where its refusal says more than the code, with the message that is still to be shown.
struct Outcome {
  ZelkResult result = ZELK_OK;
  int message = 0;       ///< string id; 0: none
  std::string fill = {}; ///< in place of the message's "%s"; Windows-1252
};

} // namespace frame
