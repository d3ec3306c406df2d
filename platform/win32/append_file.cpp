#include "platform/append_file.h"

#include "platform/win32/win32.h"

namespace platform {
namespace {

// Bytes far beyond the end of any file, where a lock is in nobody's way: of the users, and of who is becoming one.
constexpr DWORD kFarBeyond = 0x40000000, kUsers = 0, kGate = 1;

class Win32AppendFile final : public AppendFile {
public:
  explicit Win32AppendFile(HANDLE file) : file_(file) {}
  ~Win32AppendFile() override { CloseHandle(file_); }

  bool isEmptyOrBeginsWith(std::string_view bytes) override {
    std::string found(bytes.size(), 0);
    DWORD size = 0;
    return SetFilePointerEx(file_, {}, nullptr, FILE_BEGIN) &&
           ReadFile(file_, found.data(), DWORD(found.size()), &size, nullptr) &&
           (size == 0 || (size == found.size() && found == bytes));
  }

  void join(bool emptyWhenFirst) override {
    if (!lock(kGate, LOCKFILE_EXCLUSIVE_LOCK)) return;
    if (lock(kUsers, LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY)) {
      if (emptyWhenFirst) cutAt({});
      unlock(kUsers);
    }
    lock(kUsers, 0);
    unlock(kGate);
  }

  State state() override {
    LARGE_INTEGER size{};
    return GetFileSizeEx(file_, &size) && size.QuadPart == 0 ? State::Empty : State::Filled;
  }

  bool append(std::string_view bytes, bool flush) override {
    LARGE_INTEGER end{};
    DWORD written = 0;
    if (!SetFilePointerEx(file_, {}, &end, FILE_END)) return false;
    if (WriteFile(file_, bytes.data(), DWORD(bytes.size()), &written, nullptr) && written == bytes.size())
      return !flush || FlushFileBuffers(file_) != 0;
    if (written > 0) cutAt(end);
    return false;
  }

private:
  static OVERLAPPED position(DWORD byte) {
    OVERLAPPED at{};
    at.Offset = byte;
    at.OffsetHigh = kFarBeyond;
    return at;
  }
  bool lock(DWORD byte, DWORD flags) {
    OVERLAPPED at = position(byte);
    return LockFileEx(file_, flags, 0, 1, 0, &at) != 0;
  }
  void unlock(DWORD byte) {
    OVERLAPPED at = position(byte);
    UnlockFileEx(file_, 0, 1, 0, &at);
  }
  bool cutAt(LARGE_INTEGER end) { return SetFilePointerEx(file_, end, nullptr, FILE_BEGIN) && SetEndOfFile(file_); }

  HANDLE file_;
};

} // namespace

std::unique_ptr<AppendFile> AppendFile::open(const std::string &path) {
  HANDLE file = CreateFileW(toWide(path).c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                            nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL | FILE_FLAG_WRITE_THROUGH, nullptr);
  if (file == INVALID_HANDLE_VALUE) return nullptr;
  if (GetFileType(file) == FILE_TYPE_DISK) return std::make_unique<Win32AppendFile>(file);
  CloseHandle(file);
  return nullptr;
}

} // namespace platform
