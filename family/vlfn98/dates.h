/// Dates as callers get and give them.
#pragma once

#include <string_view>

namespace vlfn98 {

/// A date for display, "TT.MM.JJJJ".
/// \param text     may be the date itself
/// \param internal TTMMJJ with the year code (a stored date after ReverseDatum), or the display form
/// \return false, and an empty text, when there is no date
bool MakeDatum(char (&text)[11], std::string_view internal);

/// Whether a text is a date "TT.MM.JJJJ" of any year from 1 on: also one of a birth or a foundation long before the
/// books begin.
bool IsDatumLong(std::string_view text);

} // namespace vlfn98
