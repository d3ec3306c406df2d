#include "locks/locks.h"

#include <algorithm>
#include <string>

#include "platform/system.h"
#include "records/schema.h"

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
  size_t take(std::span<const LockName> names) override {
    size_t taken = 0;
    while (taken < names.size() && waitFor(names[taken]))
      ++taken;
    return taken;
  }
  bool pass(const LockName &name) override {
    if (!waitFor(name)) return false;
    giveBack(name);
    return true;
  }
  void giveBack(const LockName &name) noexcept override { file_->unlock(offsetOf(name)); }

  bool waitFor(const LockName &name) {
    uint64_t deadline = 0;
    for (uint32_t pause = kFirstPause; !file_->tryLock(offsetOf(name), true);
         pause = std::min(pause * 2, kLongestPause)) {
      uint64_t now = platform::steadyMilliseconds();
      if (deadline == 0) deadline = now + uint64_t(wait().count());
      if (now >= deadline) return false;
      platform::sleepMicroseconds(pause);
    }
    return true;
  }

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

LockName LockName::on(int number, uint16_t client, uint64_t resource) {
  const Table *table = findTable(number);
  return {table && table->scope == Scope::Global ? uint16_t(0) : client, uint16_t(number), resource};
}

uint64_t LockName::resourceOf(std::string_view text) {
  uint64_t hash = 0xCBF29CE484222325ull;
  for (char c : text)
    hash = (hash ^ uint8_t(c)) * 0x100000001B3ull;
  return hash ? hash : 1;
}

bool Locks::acquire(std::span<const LockName> names, LockMode mode) {
  if (mode == LockMode::PassThrough)
    return std::all_of(names.begin(), names.end(),
                       [this](const LockName &name) { return held_.contains(name) || pass(name); });
  std::vector<LockName> wanted;
  wanted.reserve(names.size());
  // The entries are made first, so that a lock that was taken is never without one.
  for (const LockName &name : names)
    if (held_.try_emplace(name, 0).second) wanted.push_back(name);
  const size_t taken = wanted.empty() ? 0 : take(wanted);
  if (taken == wanted.size()) {
    for (const LockName &name : names) {
      ++held_[name];
      if (name.resource == 0) lastTable_ = name;
    }
    return true;
  }
  for (size_t i = 0; i < wanted.size(); ++i) {
    if (i < taken) giveBack(wanted[i]);
    held_.erase(wanted[i]);
  }
  flush();
  return false;
}

Locks::Held::iterator Locks::lower(Held::iterator mine) {
  if (--mine->second > 0) return std::next(mine);
  giveBack(mine->first);
  return held_.erase(mine);
}

void Locks::release(std::span<const LockName> names) {
  for (const LockName &name : names)
    if (auto mine = held_.find(name); mine != held_.end()) lower(mine);
  flush();
}

void Locks::releaseTables(std::span<const uint16_t> tables) {
  for (auto it = held_.begin(); it != held_.end();) {
    bool meant = std::find(tables.begin(), tables.end(), it->first.table) != tables.end();
    it = meant ? lower(it) : std::next(it);
  }
  flush();
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
