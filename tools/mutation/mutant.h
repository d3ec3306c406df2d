/// The switch that tools/mutate builds into the mutated sources: all mutants are compiled in, and the environment says
/// which one a process runs.
///   ZELK_MUTANT=17              runs mutant 17; "abort" ends the process at the first mutant that it reaches
///   ZELK_MUTANT_REACHED=FILE    runs none, and notes in the n-th byte of the file whether mutant n was reached
#pragma once

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/mman.h>
#include <type_traits>
#include <unistd.h>

namespace mutation {

inline constexpr std::size_t kMost = 65536; // mutants, hence bytes of the file

struct Switch {
  int chosen = 0;
  unsigned char *reached = nullptr;
};

inline Switch readSwitch() {
  Switch result;
  const int before = errno;
  if (const char *file = std::getenv("ZELK_MUTANT_REACHED")) {
    // Mapped, so that a test that takes away descriptors, rights or space has no effect on the notes, and a crash none.
    const int descriptor = ::open(file, O_RDWR | O_CLOEXEC);
    if (descriptor < 0) std::abort();
    void *bytes = ::mmap(nullptr, kMost, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
    if (bytes == MAP_FAILED) std::abort();
    ::close(descriptor);
    result.reached = static_cast<unsigned char *>(bytes);
  } else if (const char *number = std::getenv("ZELK_MUTANT")) {
    result.chosen = std::strcmp(number, "abort") == 0 ? -1 : std::atoi(number);
  }
  errno = before;
  return result;
}

/// Whether the mutant is the one that runs. Not constexpr, so that it does not compile where a constant is required;
/// else the compiler could evaluate the initializer of a constant beforehand, without the mutant.
inline bool on(int number) {
  static const Switch state = readSwitch();
  if (state.reached) state.reached[number] = 1;
  if (state.chosen < 0) std::abort();
  return state.chosen == number;
}

/// The same within functions that may also be evaluated by the compiler, which then evaluates the original.
constexpr bool onAtRunTime(int number) {
  return !std::is_constant_evaluated() && on(number);
}

} // namespace mutation
