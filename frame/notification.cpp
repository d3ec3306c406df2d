#include "frame/notification.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

#include "frame/context.h"
#include "frame/messages.h"
#include "frame/notification_payload.h"
#include "frame/program.h"
#include "frame/settings.h"
#include "platform/peer_process.h"
#include "platform/registry.h"
#include "platform/system.h"
#include "store/typed.h"
#include "vlfn98/client.h"

namespace frame {
namespace {

const char kRegistrationKey[] = "SOFTWARE\\Velta\\ZELK_Out";
constexpr size_t kTimeoutSettingSize = 12;

// One for the process. The flag is what a change costs while nobody is registered; the mutex makes one hand-over of the
// wait for the ready event, the writing and the events, which a thread could otherwise break into, and keeps a
// posting's changes together. No message shows under it: a host may call the library from there.
struct Notification {
  std::atomic<bool> enabled{false};
  std::mutex mutex;
  int16_t applications = 0;
  int32_t factor = 3000; // milliseconds to wait for each application
  std::unique_ptr<platform::PeerProcess> process;
};

Notification &notification() {
  // Never destroyed: a host that ends without a detach may still post in another thread. The process notices its end.
  static auto *instance = new Notification;
  return *instance;
}

struct Wait {
  int16_t applications;
  int32_t factor;
  uint64_t milliseconds() const { return uint64_t(applications) * uint64_t(factor); }
};

void readTimeout(Notification &state) {
  // A text that is no number, 0 and a negative number leave the factor as it was.
  long long given = std::strtoll(setting("ZELK", "ZelkOutTimeout", kTimeoutSettingSize).c_str(), nullptr, 10);
  if (given > 0) state.factor = int32_t(std::min<long long>(given, INT32_MAX));
}

// \return false when the process was not ready in time; then none is asked again
bool handOver(Notification &state, const ZELK_OUT_BLOCK &block) {
  // Not cut short by the end of the process, which may have started another one to answer for it.
  if (!state.process->waitReady(Wait{state.applications, state.factor}.milliseconds())) {
    state.enabled = false;
    return false;
  }
  std::memcpy(state.process->block(), &block, sizeof block);
  state.process->resetReady();
  state.process->setSubmit();
  return true;
}

// Hands changes over as long as there is a next one, and tells the user when that failed.
template <class NextBlock> void handOverAll(NextBlock &&nextBlock) {
  Notification &state = notification();
  {
    std::lock_guard guard(state.mutex);
    ZELK_OUT_BLOCK block;
    do {
      // Another thread may have found the process silent meanwhile.
      if (!state.enabled || !nextBlock(block)) return;
    } while (handOver(state, block));
  }
  showMessage(resources::kCompanionIncomplete);
}

// The end of a process that may still be at work on its last change.
void end(platform::PeerProcess &process, bool enabled, Wait wait) {
  if (enabled) {
    const auto ready = [&] { return process.waitReady(wait.milliseconds()); };
    if (!ready()) {
      showMessage(resources::kCompanionIncomplete);
      // Waited for once more: until it is ready, the block is its last change's, and what it answers is that change.
      if (!ready()) return;
    }
    static_cast<ZELK_OUT_BLOCK *>(process.block())->Befehl = 0;
    process.resetReady();
    process.setSubmit();
    // One that does not answer is at work on something, and left to it.
    if (!ready()) return;
  }
  process.terminate();
}

// The session of the calling thread with the client open and the lines of a posting in memory, as far as there are any;
// null when there is no such client, and for all postings of a batch.
vldb98::Store *sessionWithLines(int32_t client, const vldb98::BATCHBUCHUNG &posting) try {
  ThreadContext *context = posting.Nr != 0 ? threadContext() : nullptr;
  if (!context) return nullptr;
  vldb98::Store &store = context->store();
  if (store.HoleFista().Nummer != client && vlfn98::HoleMandantenDaten(store, client) != ZELK_OK) return nullptr;
  const vldb98::SPLIT *first = store.PSplit(0);
  if (first && first->Stapel == posting.Stapel && first->Buchung == posting.Nr) return &store;
  vldb98::BATCHBUCHUNG stored;
  uint8_t found;
  // No lines are better than some of them.
  if (!store.ReadBat(stored, posting.Stapel, posting.Nr, found)) store.SplitFree();
  return &store;
} catch (const vldb98::StoreFailed &) {
  return nullptr;
}

} // namespace

bool startNotification() noexcept try {
  Notification &state = notification();
  std::lock_guard guard(state.mutex);
  if (state.process) return true;
  readTimeout(state);
  int registered = platform::registrySubkeyCount(platform::Hive::LocalMachine, kRegistrationKey);
  state.applications = int16_t(std::min(registered, INT16_MAX));
  if (state.applications < 1) return true;
  if (programSettings().programDirectory.empty()) return false;
  std::string program = programSettings().programDirectory + "zelkout" + platform::kProgramExtension;
  state.process = platform::PeerProcess::start(program, sizeof(ZELK_OUT_BLOCK));
  state.enabled = state.process != nullptr;
  return state.enabled;
} catch (...) {
  return false;
}

void endNotification() noexcept try {
  Notification &state = notification();
  std::unique_ptr<platform::PeerProcess> process;
  bool enabled;
  Wait wait;
  {
    std::lock_guard guard(state.mutex);
    process = std::move(state.process);
    enabled = state.enabled.exchange(false);
    wait = {state.applications, state.factor};
  }
  if (process) end(*process, enabled, wait);
} catch (...) {
  // Out of memory: nobody is told that the last change may be missing.
}

void notifyChange(int32_t action, int32_t kind, int32_t client, const void *record, int16_t start) noexcept try {
  if (!notification().enabled.load(std::memory_order_acquire)) return;
  vldb98::Store *store = nullptr;
  if (kind == kPostingChange && record)
    store = sessionWithLines(client, *static_cast<const vldb98::BATCHBUCHUNG *>(record));
  bool more = true;
  handOverAll([&](ZELK_OUT_BLOCK &block) {
    if (!std::exchange(more, false)) return false;
    block = changeBlock(action, kind, client, record, store, size_t(std::max<int16_t>(start, 0)));
    return true;
  });
} catch (...) {
  // What changed is stored, whatever becomes of its notification.
}

void notifyPosting(vldb98::Store &store, const vldb98::BATCHBUCHUNG &posting) noexcept {
  if (!notification().enabled.load(std::memory_order_acquire)) return;
  try {
    const size_t lines = store.lineCount();
    size_t start = 0;
    handOverAll([&](ZELK_OUT_BLOCK &block) {
      if (start >= lines) return false;
      block = changeBlock(kNew, kPostingChange, store.HoleFista().Nummer, &posting, &store, start);
      start += kLinesPerChange;
      return true;
    });
  } catch (...) {
    // As above.
  }
}

void notifyBatchEmptied(const vldb98::Store &store, int32_t batch) noexcept {
  vldb98::BATCHBUCHUNG all{};
  all.Stapel = batch;
  notifyChange(kDeleted, kPostingChange, store.HoleFista().Nummer, &all, 0);
}

void notifyAccount(const vldb98::Store &store, int32_t kind, const vldb98::PERSONENKONTO &account) noexcept {
  notifyChange(kChanged, kind, store.HoleFista().Nummer, &account, 0);
}

} // namespace frame
