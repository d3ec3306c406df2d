#include "platform/ui.h"

#include "platform/system.h"

#include <atomic>

namespace platform {
namespace {
std::atomic<Ui *> replaced{nullptr};
}

Ui &ui() {
  Ui *chosen = replaced.load();
  return chosen ? *chosen : systemUi();
}

void setUi(Ui *replacement) {
  replaced.store(replacement);
}

} // namespace platform
