/// Byte-range locks on a file: how sessions of any thread and process exclude each other.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace platform {

/// An open lock file. Each object is a holder of its own, also against other objects of the same process; the
/// operating system releases its locks when it is destroyed or its process dies. For use by one thread.
class LockFile {
public:
  /// Opens the file, creating it when missing. \param path UTF-8 \return null when it cannot be opened for writing
  static std::unique_ptr<LockFile> open(const std::string &path);

  virtual ~LockFile() = default;

  /// Locks one byte without waiting. The byte need not exist and must not be locked by this object already.
  /// \param exclusive false: shared with other holders of a shared lock
  /// \return false when another holder excludes it
  virtual bool tryLock(uint64_t offset, bool exclusive) = 0;

  virtual void unlock(uint64_t offset) = 0;
};

} // namespace platform
