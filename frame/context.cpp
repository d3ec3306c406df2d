#include "frame/context.h"

#include <atomic>
#include <new>
#include <utility>

#include "platform/system.h"
#include "store/database.h"
#include "store/typed.h"

namespace frame {
namespace {

platform::ThreadSlot slot;

void destroy(void *context) {
  delete static_cast<ThreadContext *>(context);
}

} // namespace

size_t detail::nextSlot() {
  static std::atomic<size_t> next{0};
  return next++;
}

vldb98::Store &ThreadContext::store() {
  // A change of the database concerns the sessions of all threads; each notices at its next call.
  uint32_t now = vldb98::generation();
  if (generation_ != now) {
    session_.reset();
    generation_ = now;
  }
  if (!session_) {
    session_ = vldb98::openSession();
    // Its locks would else be in the way of this one for as long as the server believes in it.
    if (session_ && lost_.connection) session_->endLost(std::exchange(lost_, {}));
  }
  vldb98::must(session_ != nullptr);
  return *session_;
}

void ThreadContext::closeSession() {
  if (sessionLost()) lost_ = session_->trace();
  session_.reset();
}

ThreadContext *threadContext() {
  if (auto *context = static_cast<ThreadContext *>(slot.get())) return context;
  if (!slot.allocated()) return nullptr;
  auto *context = new (std::nothrow) ThreadContext;
  if (context && !slot.set(context)) {
    delete context;
    return nullptr;
  }
  return context;
}

bool allocateContextSlot() {
  return slot.allocated() || slot.allocate(destroy);
}

void freeContextSlot() {
  slot.free();
}

void freeThreadContext() {
  destroy(slot.get());
  slot.set(nullptr);
}

} // namespace frame
