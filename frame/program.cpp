#include "frame/program.h"

#include <atomic>
#include <utility>

namespace frame {
namespace {

std::atomic<ZelkResult> status{0};
std::atomic<bool> isDetached{false};

ProgramSettings &settings() {
  static ProgramSettings instance;
  return instance;
}

} // namespace

const ProgramSettings &programSettings() {
  return settings();
}

ZelkResult initialisationStatus() {
  return status;
}

bool detached() {
  return isDetached;
}

void setDetached() {
  isDetached = true;
}

void setProgramSettings(ProgramSettings read) {
  settings() = std::move(read);
}

void setInitialisationStatus(ZelkResult now) {
  status = now;
}

} // namespace frame
