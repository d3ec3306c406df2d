#include "platform/lock_file.h"

#include "platform/win32/win32.h"

namespace platform {
namespace {

class Win32LockFile final : public LockFile {
public:
  explicit Win32LockFile(HANDLE file) : file_(file) {}
  ~Win32LockFile() override { CloseHandle(file_); }

  bool tryLock(uint64_t offset, bool exclusive) override {
    OVERLAPPED at = position(offset);
    DWORD flags = LOCKFILE_FAIL_IMMEDIATELY | (exclusive ? DWORD(LOCKFILE_EXCLUSIVE_LOCK) : 0);
    return LockFileEx(file_, flags, 0, 1, 0, &at) != 0;
  }

  void unlock(uint64_t offset) override {
    OVERLAPPED at = position(offset);
    UnlockFileEx(file_, 0, 1, 0, &at);
  }

private:
  static OVERLAPPED position(uint64_t offset) {
    OVERLAPPED at{};
    at.Offset = DWORD(offset);
    at.OffsetHigh = DWORD(offset >> 32);
    return at;
  }

  HANDLE file_;
};

} // namespace

std::unique_ptr<LockFile> LockFile::open(const std::string &path) {
  HANDLE file = CreateFileW(toWide(path).c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                            nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  return file == INVALID_HANDLE_VALUE ? nullptr : std::make_unique<Win32LockFile>(file);
}

} // namespace platform
