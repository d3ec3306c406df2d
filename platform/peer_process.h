/// A process that this one feeds through objects that it hands down: two events and a block of shared memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace platform {

/// The process and this side's ends of the objects. For use by one thread at a time.
///
/// Its command line is "PROGRAM %x %x %x %x": in hexadecimal this process, so that the peer notices its end, then the
/// submit event, the ready event and the block. On Windows these are handles. Elsewhere they are descriptors: a pidfd,
/// two event counters that are set while they can be read and reset by reading them, and a memory file. The peer
/// inherits nothing else; elsewhere it begins in a session of its own, with default signal handling and no standard
/// streams.
class PeerProcess {
public:
  /// \param program path, UTF-8
  /// \return null when the program or one of the objects cannot be had. A peer that runs without a handle for this side
  ///         finds the submit event set and a block of zeros.
  static std::unique_ptr<PeerProcess> start(const std::string &program, size_t blockSize);

  /// Closes this side's ends. A process that was not terminated is left running.
  virtual ~PeerProcess() = default;

  virtual void *block() = 0;

  /// Both events keep their state until they are set or reset, and begin reset.
  /// \return false when the ready event was not set in time
  virtual bool waitReady(uint64_t milliseconds) = 0;
  virtual void resetReady() = 0;
  virtual void setSubmit() = 0;

  /// Ends the process at once, without its doing.
  virtual void terminate() = 0;
};

} // namespace platform
