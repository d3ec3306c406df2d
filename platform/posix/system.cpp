#include "platform/system.h"

#include "platform/ui.h"

#include <cstdio>
#include <ctime>
#include <pthread.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace platform {
namespace {

class ConsoleUi final : public Ui {
public:
  Button message(const std::string &caption, const std::string &text, BoxIcon, BoxButtons buttons) override {
    std::fprintf(stderr, "%s: %s\n", caption.c_str(), text.c_str());
    switch (buttons) {
    case BoxButtons::Ok:
      return Button::Ok;
    case BoxButtons::OkCancel:
    case BoxButtons::YesNoCancel:
      return Button::Cancel;
    case BoxButtons::YesNo:
    case BoxButtons::YesNoDefaultNo:
      break;
    }
    return Button::No;
  }
  std::optional<std::string> input(const std::string &, const std::string &) override { return std::nullopt; }
  void choose(Selection &, void *) override {}
  std::optional<std::string> saveFile(uintptr_t, const std::string &, const std::string &) override {
    return std::nullopt;
  }
};

} // namespace

Ui &systemUi() {
  static ConsoleUi console;
  return console;
}

bool ThreadSlot::allocate(Cleanup cleanup) {
  pthread_key_t key;
  if (pthread_key_create(&key, cleanup) != 0) return false;
  index_ = key;
  return true;
}

void ThreadSlot::free() {
  if (!allocated()) return;
  pthread_key_delete(pthread_key_t(index_));
  index_ = kNone;
}

void *ThreadSlot::get() const {
  return allocated() ? pthread_getspecific(pthread_key_t(index_)) : nullptr;
}
bool ThreadSlot::set(void *value) {
  return allocated() && pthread_setspecific(pthread_key_t(index_), value) == 0;
}

void adoptUserLocale() {}
void releaseProcessInitialisation() {}

void sleepMicroseconds(uint32_t microseconds) {
  timespec duration{time_t(microseconds / 1000000), long(microseconds % 1000000) * 1000};
  ::nanosleep(&duration, nullptr);
}

uint64_t steadyMilliseconds() {
  timespec now{};
  ::clock_gettime(CLOCK_MONOTONIC, &now);
  return uint64_t(now.tv_sec) * 1000 + uint64_t(now.tv_nsec) / 1000000;
}

LocalTime localTime() {
  time_t now = ::time(nullptr);
  tm local{};
  ::localtime_r(&now, &local);
  return {local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec};
}

uint32_t threadId() {
  return uint32_t(::syscall(SYS_gettid));
}
uint32_t processId() {
  return uint32_t(::getpid());
}

std::vector<std::string> commandLine(int argc, char **argv) {
  return {argv, argv + argc};
}

const char kProgramExtension[] = "";

bool errorIsTerminal() {
  return ::isatty(STDERR_FILENO) != 0;
}

} // namespace platform
