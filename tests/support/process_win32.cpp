#include "support/process.h"

#include <cstdlib>
#include <mutex>

#include "platform/win32/win32.h"

// Tests link the library's parts into their own program, which has no entry point of a library that would hear of
// ending threads.
static void NTAPI onThread(PVOID, DWORD reason, PVOID) {
  if (reason == DLL_THREAD_DETACH) platform::runThreadCleanups();
}
extern "C" __attribute__((section(".CRT$XLC"), used)) const PIMAGE_TLS_CALLBACK zelkTestThreadCallback = onThread;

namespace test {
namespace {

std::wstring keyOf(const std::string &folder) {
  std::wstring name = platform::toWide(folder);
  for (wchar_t &c : name)
    if (c == L'\\' || c == L':') c = L'_';
  return L"Software\\zelk98-test\\" + name;
}

int exitCode(const PROCESS_INFORMATION &process) {
  WaitForSingleObject(process.hProcess, INFINITE);
  DWORD code = 0;
  GetExitCodeProcess(process.hProcess, &code);
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  return int(code);
}

} // namespace

int processId() {
  return int(GetCurrentProcessId());
}

void setEnvironment(const std::string &name, const std::string &value) {
  _putenv_s(name.c_str(), value.c_str());
}

void isolateSettings(const std::string &folder) {
  for (HKEY hive : {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER}) {
    RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
    std::wstring path = keyOf(folder) + (hive == HKEY_LOCAL_MACHINE ? L"\\machine" : L"\\user");
    HKEY key;
    if (RegCreateKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr) != 0)
      continue;
    RegOverridePredefKey(hive, key);
    RegCloseKey(key);
  }
}

void dropSettings(const std::string &folder) {
  RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
  RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
  RegDeleteTreeW(HKEY_CURRENT_USER, keyOf(folder).c_str());
}

bool limitFileSize(uint64_t) {
  return false;
}
bool becomeOrdinaryUser() {
  return false;
}

int64_t peakMemory() {
  return 0;
}

bool processRuns(int id) {
  HANDLE process = OpenProcess(SYNCHRONIZE, FALSE, DWORD(id));
  if (!process) return false;
  DWORD state = WaitForSingleObject(process, 0);
  CloseHandle(process);
  return state == WAIT_TIMEOUT;
}

void endProcess(int id) {
  HANDLE process = OpenProcess(PROCESS_TERMINATE, FALSE, DWORD(id));
  TerminateProcess(process, 1);
  CloseHandle(process);
}

bool hasZombie() {
  return false;
}

void rememberProgram(const std::string &) {}

int runProgram(const std::string &program, const std::string &arguments, const std::string &output) {
  SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
  HANDLE file = CreateFileW(platform::toWide(output).c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                            &inherited, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdOutput = startup.hStdError = file;
  PROCESS_INFORMATION process{};
  std::wstring command = platform::toWide("\"" + program + "\" " + arguments);
  BOOL started =
      CreateProcessW(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &process);
  CloseHandle(file);
  if (!started) return -1;
  return exitCode(process);
}

bool shareSettings() {
  if (!GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version")) return false;
  RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
  RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
  RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"Software\\Velta");
  RegDeleteTreeW(HKEY_CURRENT_USER, L"Software\\Velta");
  return true;
}

LoadedLibrary::LoadedLibrary(const std::string &path) : module_(LoadLibraryW(platform::toWide(path).c_str())) {}
LoadedLibrary::~LoadedLibrary() {
  if (module_) FreeLibrary(static_cast<HMODULE>(module_));
}
void *LoadedLibrary::function(const std::string &name) const {
  return module_ ? reinterpret_cast<void *>(GetProcAddress(static_cast<HMODULE>(module_), name.c_str())) : nullptr;
}

int openHandles() {
  // (GetProcessHandleCount says 0 under Wine.)
  int count = 0;
  DWORD flags;
  for (uintptr_t value = 4; value < 0x20000; value += 4)
    count += GetHandleInformation(reinterpret_cast<HANDLE>(value), &flags) != 0;
  return count;
}

bool limitDescriptors(int) {
  return false;
}

int runSelf(const std::string &role, const std::string &argument) {
  static std::mutex environmentInUse;
  wchar_t path[1024];
  GetModuleFileNameW(nullptr, path, 1024);
  std::wstring command = L"\"" + std::wstring(path) + L"\"";
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process{};
  {
    std::lock_guard guard(environmentInUse);
    SetEnvironmentVariableA("ZELK_TEST_CHILD", role.c_str());
    SetEnvironmentVariableA("ZELK_TEST_ARGUMENT", argument.c_str());
    BOOL started =
        CreateProcessW(path, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process);
    SetEnvironmentVariableA("ZELK_TEST_CHILD", nullptr);
    SetEnvironmentVariableA("ZELK_TEST_ARGUMENT", nullptr);
    if (!started) return -1;
  }
  return exitCode(process);
}

} // namespace test
