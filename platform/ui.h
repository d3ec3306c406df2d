/// What the library shows to a person. All texts are UTF-8.
#pragma once

#include <string>

namespace platform {

enum class BoxIcon { Information, Exclamation, Question };
enum class BoxButtons { Ok, OkCancel, YesNo, YesNoCancel, YesNoDefaultNo };
enum class Button { Ok = 1, Cancel = 2, Yes = 6, No = 7 };

class Ui {
public:
  virtual ~Ui() = default;

  /// Shows a modal message box in the foreground, owned by the active window, and returns the button pressed.
  virtual Button message(const std::string &caption, const std::string &text, BoxIcon icon, BoxButtons buttons) = 0;
};

/// The interface in use: the system's own unless another one was set. Where there is no desktop, the system's own
/// writes messages to standard error and answers with OK, or Cancel and No where there is a choice.
Ui &ui();

/// Puts another interface in place; null brings the system's own back.
void setUi(Ui *replacement);

} // namespace platform
