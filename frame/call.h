/// The frame that every exported function runs in, once: an export names itself and its parameters as data and fills in
/// a body.
#pragma once

#include <initializer_list>
#include <span>
#include <type_traits>

#include "frame/context.h"
#include "resources/strings.h"
#include "zelk98/zelk98.h"

namespace frame {

/// What the frame knows of an exported function.
struct Export {
  const char *name;
  bool fetch = false;                      ///< results 1 and 0 carry the names of a fetch
  bool dialog = false;                     ///< result 0 carries the name of a cancelled dialog
  int companion = resources::kNoCompanion; ///< name of the result -1
  bool connect = true;                     ///< attach opens the default connection
  bool refusesWhenDetached = true;         ///< -3 after ZELK_SQLDeInit
  bool needsStatus = true;                 ///< the initialisation status must be 1
  bool needsContext = true;                ///< -42 without a thread context
  bool engine = false;                     ///< results 1 to 3 carry the names of engines
  const char *remark = nullptr;            ///< stands behind the name in the call protocol
  bool dumpInOneLine = false;              ///< so do its parameters, behind each other
};

/// One labelled parameter or record field of a call, for the call protocol and the check of the widths.
struct Parameter {
  enum class Kind : uint8_t {
    Number,
    Engine,   ///< a number that is shown as the name of an engine
    Text,     ///< a text that a host passes by pointer
    Options,  ///< the same, shown without the values of its options that carry passwords
    Field,    ///< a text in an array of a record
    Given,    ///< shown only as given or null: what the call fills, and secrets
    Messages, ///< the messages flag
  };

  const char *label; ///< with its colon, UTF-8
  Kind kind;
  uint16_t width = 0; ///< Field: bytes of the array, in which the text must end
  int64_t number = 0;
  const void *pointer = nullptr;
  bool printed = true; ///< stands in the call protocol
  bool checked = true; ///< Field: -37 when the text does not end within its width
};

template <class Number> constexpr Parameter number(const char *label, Number value) {
  return {label, Parameter::Kind::Number, 0, int64_t(value), nullptr};
}
constexpr Parameter engine(const char *label, int32_t value) {
  return {label, Parameter::Kind::Engine, 0, value, nullptr};
}
/// A text that a host passes by pointer; may be null.
inline Parameter text(const char *label, const char *value) {
  return {label, Parameter::Kind::Text, 0, 0, value};
}
/// A text that is, or may pass for, a part of a connection string; may be null.
inline Parameter options(const char *label, const char *value) {
  return {label, Parameter::Kind::Options, 0, 0, value};
}
/// A text in an array of a record, of which the width is known at run time.
inline Parameter field(const char *label, const char *value, size_t width) {
  return {label, Parameter::Kind::Field, uint16_t(width), 0, value};
}
/// A text in an array of a record.
template <size_t N> Parameter field(const char *label, const char (&value)[N]) {
  return field(label, value, N);
}
/// What the call fills; may be null.
inline Parameter out(const char *label, const void *value) {
  return {label, Parameter::Kind::Given, 0, 0, value};
}
/// What nobody is to read in the call protocol; may be null.
inline Parameter secret(const char *label, const char *value) {
  return out(label, value);
}
/// The same parameter, but not in the call protocol.
constexpr Parameter unprinted(Parameter parameter) {
  parameter.printed = false;
  return parameter;
}
/// The same field, whose text need not end within its width.
constexpr Parameter unchecked(Parameter parameter) {
  parameter.checked = false;
  return parameter;
}
/// The messages flag; the frame keeps it in the thread's context, where it holds until the next call that takes one.
inline Parameter messages(int32_t value) {
  return {"Fehlermeldungen:", Parameter::Kind::Messages, 0, value, nullptr};
}

namespace detail {
using Body = ZelkResult (*)(void *body, ThreadContext *context);
ZelkResult run(const Export &self, std::span<const Parameter> parameters, Body body, void *object) noexcept;
ZelkResult runWithin(ThreadContext &context, const Export &self, std::span<const Parameter> parameters, Body body,
                     void *object);

template <class Object> ZelkResult call(void *object, ThreadContext *context) {
  return (*static_cast<Object *>(object))(context);
}
} // namespace detail

/// Runs a body in the frame: attach and working directory, detached test, entry in the call protocol, initialisation
/// status, widths of the texts, the body, result in the call protocol, working directory again. A failure of the store
/// that the body throws becomes -3, all else -2.
/// \param body called with the thread's context (a pointer, null where the export needs none)
template <class Body> ZelkResult run(const Export &self, std::span<const Parameter> parameters, Body &&body) {
  return detail::run(self, parameters, detail::call<std::remove_reference_t<Body>>, &body);
}
template <class Body> ZelkResult run(const Export &self, std::initializer_list<Parameter> parameters, Body &&body) {
  return run(self, std::span(parameters.begin(), parameters.size()), body);
}

/// Runs the body of an export as a part of another export's body. It has its own entry in the call protocol and the
/// check of its texts; what else the frame does was done for the call around it.
template <class Body>
ZelkResult runWithin(ThreadContext &context, const Export &self, std::span<const Parameter> parameters, Body &&body) {
  return detail::runWithin(context, self, parameters, detail::call<std::remove_reference_t<Body>>, &body);
}

/// The resource id of the name under which a result is shown; 0 when it has none.
int resultNameId(const Export &self, ZelkResult result);

} // namespace frame
