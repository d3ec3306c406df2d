#include "platform/peer_process.h"

#include "platform/win32/win32.h"

#include <algorithm>
#include <cstdio>
#include <utility>
#include <vector>

namespace platform {
namespace {

class Handle {
public:
  explicit Handle(HANDLE handle = nullptr) : handle_(handle) {}
  ~Handle() {
    if (handle_) CloseHandle(handle_);
  }
  Handle(Handle &&other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
  Handle &operator=(Handle &&) = delete;
  explicit operator bool() const { return handle_ != nullptr; }
  HANDLE get() const { return handle_; }

private:
  HANDLE handle_;
};

HANDLE ownProcess() {
  HANDLE self = nullptr;
  DuplicateHandle(GetCurrentProcess(), GetCurrentProcess(), GetCurrentProcess(), &self, 0, TRUE, DUPLICATE_SAME_ACCESS);
  return self;
}

struct Objects {
  explicit Objects(size_t blockSize)
      : submit(CreateEventW(&inherited, TRUE, FALSE, nullptr)), ready(CreateEventW(&inherited, TRUE, FALSE, nullptr)),
        memory(CreateFileMappingW(INVALID_HANDLE_VALUE, &inherited, PAGE_READWRITE, 0, DWORD(blockSize), nullptr)) {}

  explicit operator bool() const { return submit && ready && memory; }

  SECURITY_ATTRIBUTES inherited{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
  Handle submit, ready, memory;
};

// Names the handles that a new process inherits: of the host's own ones none.
class Inheritance {
public:
  explicit Inheritance(std::vector<HANDLE> handles) : handles_(std::move(handles)) {
    SIZE_T size = 0;
    InitializeProcThreadAttributeList(nullptr, 1, 0, &size);
    bytes_.resize(size);
    made_ = InitializeProcThreadAttributeList(get(), 1, 0, &size);
    complete_ = made_ && UpdateProcThreadAttribute(get(), 0, PROC_THREAD_ATTRIBUTE_HANDLE_LIST, handles_.data(),
                                                   handles_.size() * sizeof(HANDLE), nullptr, nullptr);
  }
  ~Inheritance() {
    if (made_) DeleteProcThreadAttributeList(get());
  }
  Inheritance(const Inheritance &) = delete;
  Inheritance &operator=(const Inheritance &) = delete;
  explicit operator bool() const { return complete_; }
  LPPROC_THREAD_ATTRIBUTE_LIST get() { return reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(bytes_.data()); }

private:
  std::vector<HANDLE> handles_;
  std::vector<char> bytes_;
  bool made_ = false, complete_ = false;
};

// \return null when it cannot be started
HANDLE createProcess(const std::string &program, const Objects &objects) {
  Handle self(ownProcess());
  if (!self) return nullptr;
  const std::vector<HANDLE> handles{self.get(), objects.submit.get(), objects.ready.get(), objects.memory.get()};
  std::string command = program;
  for (HANDLE handle : handles) {
    char number[2 + 2 * sizeof(unsigned)];
    std::snprintf(number, sizeof number, " %x", unsigned(reinterpret_cast<uintptr_t>(handle)));
    command += number;
  }
  Inheritance inheritance(handles);
  if (!inheritance) return nullptr;
  STARTUPINFOEXW startup{};
  startup.StartupInfo.cb = sizeof startup;
  startup.StartupInfo.dwFlags = STARTF_FORCEOFFFEEDBACK;
  startup.lpAttributeList = inheritance.get();
  PROCESS_INFORMATION process{};
  std::wstring wide = toWide(command);
  // The program is also named apart from the command line, in which its path stands without quotes.
  if (!CreateProcessW(toWide(program).c_str(), wide.data(), nullptr, nullptr, TRUE,
                      NORMAL_PRIORITY_CLASS | EXTENDED_STARTUPINFO_PRESENT, nullptr, nullptr, &startup.StartupInfo,
                      &process))
    return nullptr;
  CloseHandle(process.hThread);
  return process.hProcess;
}

class Win32PeerProcess final : public PeerProcess {
public:
  Win32PeerProcess(Handle process, Objects objects, void *block)
      : process_(std::move(process)), objects_(std::move(objects)), block_(block) {}
  ~Win32PeerProcess() override { UnmapViewOfFile(block_); }

  void *block() override { return block_; }

  bool waitReady(uint64_t milliseconds) override {
    DWORD limit = DWORD(std::min<uint64_t>(milliseconds, INFINITE - 1));
    return WaitForSingleObject(objects_.ready.get(), limit) == WAIT_OBJECT_0;
  }
  void resetReady() override { ResetEvent(objects_.ready.get()); }
  void setSubmit() override { SetEvent(objects_.submit.get()); }
  void terminate() override { TerminateProcess(process_.get(), 0); }

private:
  Handle process_;
  Objects objects_;
  void *block_;
};

} // namespace

std::unique_ptr<PeerProcess> PeerProcess::start(const std::string &program, size_t blockSize) {
  Objects objects(blockSize);
  if (!objects) return nullptr;
  void *block = MapViewOfFile(objects.memory.get(), FILE_MAP_WRITE, 0, 0, blockSize);
  if (!block) return nullptr;
  Handle process(createProcess(program, objects));
  if (!process) {
    UnmapViewOfFile(block);
    return nullptr;
  }
  return std::make_unique<Win32PeerProcess>(std::move(process), std::move(objects), block);
}

} // namespace platform
