/// The frame that every exported function runs in, once: an export names itself and its parameters as data and fills in
/// a body.
#pragma once

#include <initializer_list>
#include <span>
#include <type_traits>

#include "frame/context.h"
#include "frame/signature.h"

namespace frame {

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

} // namespace frame
