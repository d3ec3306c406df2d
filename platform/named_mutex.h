/// Mutexes by name: what excludes the threads of all processes of a user from each other.
#pragma once

#include <memory>
#include <string>

namespace platform {

/// An open named mutex. The operating system lets it go when its holder dies. Not recursive.
class NamedMutex {
public:
  /// Opens the mutex, creating it when missing: on Windows the system's own, elsewhere a lock on a file of that name
  /// beside the settings file, which all processes of a user share. \return null when it cannot be had
  static std::unique_ptr<NamedMutex> open(const std::string &name);

  virtual ~NamedMutex() = default;

  /// Waits without limit, for other threads that use the same object, too.
  virtual void lock() = 0;
  virtual void unlock() = 0;
};

} // namespace platform
