/// Messages to the user, and the refusal of a call.
#pragma once

#include <string_view>

#include "frame/outcome.h"
#include "resources/strings.h"
#include "zelk98/zelk98.h"

namespace frame {

class ThreadContext;

/// Title of the library's message boxes.
inline constexpr char kMessageCaption[] = "Velta MERKA FIBU";

/// Shows a message in the box style of its group, whatever the messages flag.
/// \param fill    in place of the message's "%s"; Windows-1252
/// \param partial index of the partial posting that the message is about, from 0; below 0: none
/// \return the button pressed for a box with Yes, No and Cancel; else 1 for OK or Yes and 0 for Cancel or No
int showMessage(int message, std::string_view fill = {}, int partial = -1);

/// Refuses a call: notes the message in the call protocol, shows it when the call's messages flag is set, and returns
/// the code.
ZelkResult refuse(const ThreadContext &context, ZelkResult code, int message, std::string_view fill = {},
                  int partial = -1);

/// Ends a call: refuses it when its outcome has a message. To be called without locks: a person who looks at a message
/// box must not keep others from working. \return the outcome's result
ZelkResult finish(const ThreadContext &context, const Outcome &outcome);

} // namespace frame
