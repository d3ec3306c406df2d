#include "vldb98/locks.h"

#include <algorithm>
#include <string>

#include "platform/system.h"

namespace vldb98 {
namespace {

// Short at first, since a posting holds its locks for well under a millisecond; long enough later to leave the
// processor to the holder.
constexpr uint32_t kFirstPause = 50;
constexpr uint32_t kLongestPause = 4000;

class FileLocks final : public Locks {
public:
  FileLocks(std::unique_ptr<platform::LockFile> file, std::chrono::milliseconds wait)
      : Locks(wait), file_(std::move(file)) {}

private:
  bool tryTake(const LockName &name) override { return file_->tryLock(offsetOf(name), true); }
  void giveBack(const LockName &name) override { file_->unlock(offsetOf(name)); }

  // Tables lie in the lower half, one byte each; resources are spread over 2^40 bytes of the upper half, so that two of
  // them practically never share one. If they do, they merely exclude each other.
  static uint64_t offsetOf(const LockName &name) {
    uint64_t table = uint64_t(name.client) << 16 | name.table;
    if (name.resource == 0) return table;
    uint64_t mixed = (table + 1) * 0x9E3779B97F4A7C15ull ^ name.resource;
    return (1ull << 48) + (mixed & ((1ull << 40) - 1));
  }

  std::unique_ptr<platform::LockFile> file_;
};

} // namespace

uint64_t LockName::resourceOf(std::string_view text) {
  uint64_t hash = 0xCBF29CE484222325ull;
  for (char c : text)
    hash = (hash ^ uint8_t(c)) * 0x100000001B3ull;
  return hash ? hash : 1;
}

bool Locks::acquire(const LockName &name, LockMode mode) {
  // The entry is made first, so that a lock that was taken is never without one.
  auto [mine, fresh] = held_.try_emplace(name, 0);
  if (!fresh) {
    if (mode == LockMode::Exclusive) ++mine->second;
    return true;
  }
  bool taken = waitFor(name);
  if (taken && mode == LockMode::Exclusive) {
    mine->second = 1;
    return true;
  }
  if (taken) giveBack(name);
  held_.erase(mine);
  return taken;
}

bool Locks::waitFor(const LockName &name) {
  uint64_t deadline = 0;
  for (uint32_t pause = kFirstPause; !tryTake(name); pause = std::min(pause * 2, kLongestPause)) {
    uint64_t now = platform::steadyMilliseconds();
    if (deadline == 0) deadline = now + uint64_t(wait_.count());
    if (now >= deadline) return false;
    platform::sleepMicroseconds(pause);
  }
  return true;
}

Locks::Held::iterator Locks::release(Held::iterator mine) {
  if (--mine->second > 0) return std::next(mine);
  giveBack(mine->first);
  return held_.erase(mine);
}

void Locks::release(const LockName &name) {
  if (auto mine = held_.find(name); mine != held_.end()) release(mine);
}

void Locks::releaseTable(uint16_t table) {
  for (auto it = held_.begin(); it != held_.end();)
    it = it->first.table == table ? release(it) : std::next(it);
}

std::vector<LockName> Locks::heldOn(uint16_t table) const {
  std::vector<LockName> names;
  for (const auto &[name, count] : held_)
    if (name.table == table) names.push_back(name);
  return names;
}

std::unique_ptr<Locks> openFileLocks(const std::string &path, std::chrono::milliseconds wait) {
  auto file = platform::LockFile::open(path);
  return file ? std::make_unique<FileLocks>(std::move(file), wait) : nullptr;
}

} // namespace vldb98
