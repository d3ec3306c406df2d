/// The state of a calling thread.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "frame/shared_fetch.h"
#include "store/store.h"

namespace frame {

namespace detail {
size_t nextSlot();
}

/// Created on first need, freed when the thread ends or the library is detached.
class ThreadContext {
public:
  int32_t messages = 0; ///< messages flag of the thread's last call that takes one
  SharedFetch fetch;

  /// What a subsystem keeps for the thread, beyond calls: the value of a type that it declares and nobody else knows.
  /// Made on first need, freed with the context; a reference stays good until then.
  template <class T> T &slot() {
    static const size_t index = detail::nextSlot();
    if (index >= slots_.size()) slots_.resize(index + 1);
    if (!slots_[index]) slots_[index] = std::make_shared<T>();
    return *static_cast<T *>(slots_[index].get());
  }

  /// The thread's session, opened on first need. \throws vldb98::StoreFailed when the database cannot be opened
  vldb98::Store &store();

  /// Whether the session has lost its connection, or its file is no longer in its place.
  bool sessionLost() const { return session_ && !session_->usable(); }

  /// Closes the session: what it had begun is rolled back, what it had locked is free.
  void closeSession();

private:
  std::vector<std::shared_ptr<void>> slots_; // a void that knows how to be freed
  std::unique_ptr<vldb98::Store> session_;
  vldb98::SessionTrace lost_; ///< of the last session whose connection was lost
  uint32_t generation_ = 0;
};

/// The calling thread's context; null when there is none to be had.
ThreadContext *threadContext();

/// For attach and detach. \return false when the process has no thread-local slot left
bool allocateContextSlot();
void freeContextSlot();
void freeThreadContext();

} // namespace frame
