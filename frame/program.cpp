#include "frame/program.h"

#include <atomic>
#include <utility>

namespace frame {
namespace {

struct Program {
  std::atomic<ZelkResult> status{0};
  std::atomic<bool> detached{false};
  ProgramSettings settings;
};

Program &program() {
  static Program instance;
  return instance;
}

} // namespace

const ProgramSettings &programSettings() {
  return program().settings;
}

ZelkResult initialisationStatus() {
  return program().status;
}

bool detached() {
  return program().detached;
}

void setDetached() {
  program().detached = true;
}

void setProgramSettings(ProgramSettings settings) {
  program().settings = std::move(settings);
}

void setInitialisationStatus(ZelkResult status) {
  program().status = status;
}

} // namespace frame
