/// What the two systems do each in its own way, beside files, locks and the registry.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace platform {

class Ui;

/// The system's own user interface.
Ui &systemUi();

/// One pointer per thread of the process.
class ThreadSlot {
public:
  /// Called for a thread that ends with its pointer not null.
  using Cleanup = void (*)(void *);

  ThreadSlot() = default;
  ThreadSlot(const ThreadSlot &) = delete;
  ThreadSlot &operator=(const ThreadSlot &) = delete;

  /// \return false when the process has no slot left
  bool allocate(Cleanup cleanup);
  void free();
  bool allocated() const { return index_ != kNone; }

  /// Null when nothing was set in this thread, or the slot is not allocated.
  void *get() const;
  bool set(void *value);

private:
  static constexpr uint32_t kNone = 0xFFFFFFFF;
  uint32_t index_ = kNone;
};

/// Takes over the user's language for the C runtime's character types and collation on Windows, as hosts there are used
/// to. Elsewhere the host's settings stay as they are.
void adoptUserLocale();

/// Ends what the load of the library initialised for the process (COM on Windows); does nothing a second time.
void releaseProcessInitialisation();

/// Sleeps for about so long.
void sleepMicroseconds(uint32_t microseconds);

/// Monotonic clock, in milliseconds.
uint64_t steadyMilliseconds();

/// The date and time of the clock on the wall.
struct LocalTime {
  int year, month, day, hour, minute, second;
};
LocalTime localTime();

/// The system's numbers of the calling thread and of the process.
uint32_t threadId();
uint32_t processId();

/// The arguments of the process as UTF-8, the program's name first; a console that shows UTF-8.
std::vector<std::string> commandLine(int argc, char **argv);

/// What the file names of programs end in: ".exe" on Windows.
extern const char kProgramExtension[];

/// True when standard error is a terminal.
bool errorIsTerminal();

} // namespace platform
