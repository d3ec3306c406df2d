/// What the library shows to a person. All texts are UTF-8.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace platform {

enum class BoxIcon { Information, Exclamation, Question };
enum class BoxButtons { Ok, OkCancel, YesNo, YesNoCancel, YesNoDefaultNo };
enum class Button { Ok = 1, Cancel = 2, Yes = 6, No = 7 };

/// A list from which a person picks a line: what a dialog with a list box, a search field, one radio button per order,
/// OK and Cancel shows, and what becomes of the person's doings. The dialog only forwards them and shows the outcome.
/// The list is filled before the dialog opens.
class Selection {
public:
  virtual ~Selection() = default;

  virtual std::string title() const = 0;

  /// The orders of the list, each with the caption of its radio button; the one that is on.
  virtual int orderCount() const = 0;
  virtual std::string orderName(int order) const = 0;
  virtual int order() const = 0;

  /// The lines in that order; a tab parts the two columns.
  virtual size_t lineCount() const = 0;
  virtual std::string line(size_t index) const = 0;
  virtual std::optional<size_t> selected() const = 0;

  /// A radio button: refills the list, which has another selection then. \return false when the dialog ends, since the
  /// list cannot be filled
  virtual bool switchOrder(int order) = 0;
  /// The search field has another text: selects the first line that begins with it.
  virtual void search(const std::string &typed) = 0;
  /// A click on a line, or the cursor keys in the list.
  virtual void select(size_t index) = 0;
  /// OK, and two quick clicks on a line, which select it first. \return false when the dialog stays open, since no line
  /// is selected
  virtual bool confirm() = 0;
};

class Ui {
public:
  virtual ~Ui() = default;

  /// Shows a modal message box in the foreground, owned by the active window, and returns the button pressed.
  virtual Button message(const std::string &caption, const std::string &text, BoxIcon icon, BoxButtons buttons) = 0;

  /// Asks for one line of text, in a modal dialog owned by the active window. Nothing when the person cancels.
  virtual std::optional<std::string> input(const std::string &caption, const std::string &text) = 0;

  /// Runs a modal dialog over a list until it is confirmed, cancelled, or cannot be filled.
  /// \param parent window that owns the dialog; null: the active window
  virtual void choose(Selection &selection, void *parent) = 0;

  /// Lets the person choose the file to save to, in a modal dialog.
  /// \param owner   window that the dialog stands before; one that is none: the active window
  /// \param what    text of the kind of file, pattern the names that belong to it
  /// \return the file's path; nothing when the dialog was cancelled
  virtual std::optional<std::string> saveFile(uintptr_t owner, const std::string &what, const std::string &pattern) = 0;
};

/// The interface in use: the system's own unless another one was set. Where there is no desktop, the system's own
/// writes messages to standard error and answers with OK, or Cancel and No where there is a choice; it cancels every
/// dialog.
Ui &ui();

/// Puts another interface in place; null brings the system's own back.
void setUi(Ui *replacement);

} // namespace platform
