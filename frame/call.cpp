#include "frame/call.h"

#include <cstring>
#include <string>

#include "frame/lifecycle.h"
#include "frame/messages.h"
#include "frame/program.h"
#include "frame/protocol.h"
#include "frame/working_directory.h"
#include "platform/ui.h"
#include "store/typed.h"
#include "vlba98/encoding.h"

namespace frame {
namespace {

std::string overflowText(std::string_view field) {
  std::string text(resources::text(resources::kTextOverflow));
  // The number first: the field's text may hold the mark.
  text.replace(text.find("%i"), 2, std::to_string(field.size() - 1));
  return text.replace(text.find("%s"), 2, vlba98::toUtf8(field));
}

void reportOverflow(const Parameter &parameter, bool show) {
  const std::string_view field(static_cast<const char *>(parameter.pointer), parameter.width);
  if (protocolOpen()) protocolRefusal(overflowText(printable(field)));
  if (show)
    platform::ui().message(kMessageCaption, overflowText(field), platform::BoxIcon::Exclamation,
                           platform::BoxButtons::Ok);
}

// \return the first field whose text does not end within its width
const Parameter *firstOverflow(std::span<const Parameter> parameters) {
  for (const Parameter &parameter : parameters)
    if (parameter.kind == Parameter::Kind::Field && parameter.checked &&
        !std::memchr(parameter.pointer, 0, parameter.width))
      return &parameter;
  return nullptr;
}

// \return null for a function that does not take the flag
const Parameter *messagesFlag(std::span<const Parameter> parameters) {
  for (const Parameter &parameter : parameters)
    if (parameter.kind == Parameter::Kind::Messages) return &parameter;
  return nullptr;
}

// What a body has around it, whether a host called its export or another export did.
ZelkResult runBody(ThreadContext *context, std::span<const Parameter> parameters, detail::Body body, void *object) {
  const Parameter *flag = messagesFlag(parameters);
  if (context && flag) context->messages = int32_t(flag->number);
  if (const Parameter *overflow = firstOverflow(parameters)) {
    reportOverflow(*overflow, flag && flag->number);
    return ZELKERR_Ueberlauf;
  }
  // A connection can be lost after what a call was to do, and the database's file removed or replaced between two. The
  // file is looked for here only: it can go right after any look, so more of them would not be certain either.
  if (context && context->sessionLost()) context->closeSession();
  ZelkResult result;
  try {
    result = body(object, context);
  } catch (const vldb98::StoreFailed &) {
    result = ZELKERR_Datenbank;
  }
  // What a call has no message of its own for: it was given a null pointer.
  if (context && flag && result == ZELKERR_nicht_moeglich) refuse(*context, result, resources::textId(result));
  // Whatever the database came to, the next call begins with a connection of its own.
  if (context && result == ZELKERR_Datenbank) context->closeSession();
  return result;
}

// The entry in the call protocol, with the result of what runs in it.
template <class Work> ZelkResult inEntry(const Export &self, std::span<const Parameter> parameters, Work &&work) {
  ZelkResult result = 0;
  Protokoll protocol(self, parameters, result);
  try {
    result = work();
  } catch (...) {
    // Wherever the call was torn off, a transaction or a lock may be left.
    if (ThreadContext *context = threadContext()) context->closeSession();
    result = ZELKERR_sonst;
  }
  return result;
}

} // namespace

ZelkResult detail::run(const Export &self, std::span<const Parameter> parameters, Body body, void *object) noexcept {
  try {
    attach(self.connect);
    WorkingDirectory directory;
    if (self.refusesWhenDetached && detached()) return ZELKERR_Datenbank;
    return inEntry(self, parameters, [&]() -> ZelkResult {
      if (self.needsStatus && initialisationStatus() != ZELK_OK) return initialisationStatus();
      ThreadContext *context = self.needsContext ? threadContext() : nullptr;
      if (self.needsContext && !context) return ZELKERR_Thread;
      return runBody(context, parameters, body, object);
    });
  } catch (...) {
    return ZELKERR_sonst;
  }
}

ZelkResult detail::runWithin(ThreadContext &context, const Export &self, std::span<const Parameter> parameters,
                             Body body, void *object) {
  return inEntry(self, parameters, [&] { return runBody(&context, parameters, body, object); });
}

} // namespace frame
