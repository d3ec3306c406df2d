/// Files that several processes append to.
#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace platform {

/// A file open for appending; others may read it and write to it meanwhile. For use by one thread at a time.
class AppendFile {
public:
  /// Opens the file, creating it when missing. \param path UTF-8
  /// \return null when it cannot be read and written, or is no file on a disk: a pipe or a device is not waited for
  static std::unique_ptr<AppendFile> open(const std::string &path);

  virtual ~AppendFile() = default;

  virtual bool isEmptyOrBeginsWith(std::string_view bytes) = 0;

  /// Counts this object among the users of the file until it ends, in whichever process and with whichever settings the
  /// others are. \param emptyWhenFirst empties the file when it has no other user, before another one can come
  virtual void join(bool emptyWhenFirst) = 0;

  enum class State {
    Filled,
    Empty,
    Gone, ///< its path leads to another file, or to none; not on Windows, where an open file cannot be deleted
  };
  virtual State state() = 0;

  /// Writes after the file's end, wherever that is by now. For callers that exclude each other. What was written is
  /// the system's to keep, whatever becomes of the process.
  /// \param flush also send what was written so far on its way to the disk; on Windows wait until it is there
  /// \return false when it could not be written; what a full disk took of it is cut off again
  virtual bool append(std::string_view bytes, bool flush) = 0;
};

} // namespace platform
