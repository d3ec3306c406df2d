#include "frame/messages.h"

#include <string>

#include "frame/context.h"
#include "frame/protocol.h"
#include "platform/ui.h"
#include "vlba98/encoding.h"

namespace frame {
namespace {

using platform::BoxButtons;
using platform::BoxIcon;
using platform::Button;

constexpr int kFirstMessage = 1000;
constexpr int kGroupSize = 200;

struct BoxStyle {
  BoxIcon icon;
  BoxButtons buttons;
};

// By group of message numbers, from kFirstMessage on.
constexpr BoxStyle kStyles[] = {
    {BoxIcon::Information, BoxButtons::Ok},          {BoxIcon::Information, BoxButtons::OkCancel},
    {BoxIcon::Exclamation, BoxButtons::Ok},          {BoxIcon::Exclamation, BoxButtons::OkCancel},
    {BoxIcon::Question, BoxButtons::YesNo},          {BoxIcon::Question, BoxButtons::YesNoCancel},
    {BoxIcon::Question, BoxButtons::YesNoDefaultNo}, {BoxIcon::Exclamation, BoxButtons::Ok},
};

void replaceOnce(std::string &text, std::string_view mark, std::string_view value) {
  if (size_t at = text.find(mark); at != std::string::npos) text.replace(at, mark.size(), value);
}

std::string messageText(int message, std::string_view fill, int partial) {
  std::string text(resources::text(message));
  if (text.empty()) {
    text = "Die Meldung Nr. %i kann nicht geladen werden!";
    replaceOnce(text, "%i", std::to_string(message));
  }
  replaceOnce(text, "%s", vlba98::toUtf8(fill));
  return partial < 0 ? text : "Teilbuchung " + std::to_string(partial + 1) + ": " + text;
}

int showText(int message, const std::string &text) {
  int group = (message - kFirstMessage) / kGroupSize;
  bool known = message >= kFirstMessage && group < int(std::size(kStyles));
  BoxStyle style = known ? kStyles[group] : BoxStyle{BoxIcon::Exclamation, BoxButtons::Ok};
  Button pressed = platform::ui().message(kMessageCaption, text, style.icon, style.buttons);
  if (style.buttons == BoxButtons::YesNoCancel) return int(pressed);
  return pressed == Button::Ok || pressed == Button::Yes;
}

} // namespace

int showMessage(int message, std::string_view fill, int partial) {
  return showText(message, messageText(message, fill, partial));
}

ZelkResult refuse(const ThreadContext &context, ZelkResult code, int message, std::string_view fill, int partial) {
  if (protocolOpen()) protocolRefusal(messageText(message, printable(fill), partial));
  if (context.messages) showText(message, messageText(message, fill, partial));
  return code;
}

ZelkResult finish(const ThreadContext &context, const Outcome &outcome) {
  return outcome.message ? refuse(context, outcome.result, outcome.message, outcome.fill) : outcome.result;
}

} // namespace frame
