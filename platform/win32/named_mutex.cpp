#include "platform/named_mutex.h"

#include "platform/win32/win32.h"

namespace platform {
namespace {

class SystemMutex final : public NamedMutex {
public:
  explicit SystemMutex(HANDLE handle) : handle_(handle) {}
  ~SystemMutex() override { CloseHandle(handle_); }

  // A mutex that its holder's death has abandoned is had all the same.
  void lock() override { WaitForSingleObject(handle_, INFINITE); }
  void unlock() override { ReleaseMutex(handle_); }

private:
  HANDLE handle_;
};

} // namespace

std::unique_ptr<NamedMutex> NamedMutex::open(const std::string &name) {
  HANDLE handle = CreateMutexW(nullptr, FALSE, toWide(name).c_str());
  return handle ? std::make_unique<SystemMutex>(handle) : nullptr;
}

} // namespace platform
