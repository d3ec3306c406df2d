#include "platform/append_file.h"

#include "platform/win32/win32.h"

namespace platform {
namespace {

class Win32AppendFile final : public AppendFile {
public:
  explicit Win32AppendFile(HANDLE file) : file_(file) {}
  ~Win32AppendFile() override { CloseHandle(file_); }

  bool empty() override { return cutAt({}); }

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
  bool cutAt(LARGE_INTEGER end) { return SetFilePointerEx(file_, end, nullptr, FILE_BEGIN) && SetEndOfFile(file_); }

  HANDLE file_;
};

} // namespace

std::unique_ptr<AppendFile> AppendFile::open(const std::string &path) {
  HANDLE file = CreateFileW(toWide(path).c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                            OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL | FILE_FLAG_WRITE_THROUGH, nullptr);
  return file == INVALID_HANDLE_VALUE ? nullptr : std::make_unique<Win32AppendFile>(file);
}

} // namespace platform
