#include "platform/system.h"

#include "platform/ui.h"
#include "platform/win32/win32.h"

#include <clocale>
#include <commdlg.h>
#include <shellapi.h>

namespace platform {
namespace {

class DesktopUi final : public Ui {
public:
  Button message(const std::string &caption, const std::string &text, BoxIcon icon, BoxButtons buttons) override {
    UINT style = MB_SETFOREGROUND;
    switch (icon) {
    case BoxIcon::Information:
      style |= MB_ICONINFORMATION;
      break;
    case BoxIcon::Exclamation:
      style |= MB_ICONEXCLAMATION;
      break;
    case BoxIcon::Question:
      style |= MB_ICONQUESTION;
      break;
    }
    switch (buttons) {
    case BoxButtons::Ok:
      style |= MB_OK;
      break;
    case BoxButtons::OkCancel:
      style |= MB_OKCANCEL;
      break;
    case BoxButtons::YesNo:
      style |= MB_YESNO;
      break;
    case BoxButtons::YesNoCancel:
      style |= MB_YESNOCANCEL;
      break;
    case BoxButtons::YesNoDefaultNo:
      style |= MB_YESNO | MB_DEFBUTTON2;
      break;
    }
    HCURSOR before = SetCursor(LoadCursorW(nullptr, reinterpret_cast<LPCWSTR>(IDC_ARROW)));
    int pressed = MessageBoxW(GetActiveWindow(), toWide(text).c_str(), toWide(caption).c_str(), style);
    SetCursor(before);
    return Button(pressed);
  }
  std::optional<std::string> input(const std::string &, const std::string &) override { return std::nullopt; }
  void choose(Selection &, void *) override {}

  std::optional<std::string> saveFile(uintptr_t owner, const std::string &what, const std::string &pattern) override {
    // Texts and patterns, each with its terminator, and one more after the last.
    std::wstring filter = toWide(what) + L'\0' + toWide(pattern) + L'\0';
    wchar_t path[1024] = L"";
    HWND window = reinterpret_cast<HWND>(owner);
    OPENFILENAMEW dialog{};
    dialog.lStructSize = sizeof dialog;
    dialog.hwndOwner = IsWindow(window) ? window : GetActiveWindow();
    dialog.lpstrFilter = filter.c_str();
    dialog.lpstrFile = path;
    dialog.nMaxFile = DWORD(std::size(path));
    dialog.lpstrDefExt = L"txt";
    dialog.Flags = OFN_EXPLORER | OFN_HIDEREADONLY | OFN_NOCHANGEDIR | OFN_OVERWRITEPROMPT | OFN_PATHMUSTEXIST;
    if (!GetSaveFileNameW(&dialog)) return std::nullopt;
    return fromWide(path);
  }
};

// Slots whose pointers are to be cleaned up when a thread ends. More than one only when the library's parts are linked
// into one program twice.
struct CleanupEntry {
  DWORD index;
  ThreadSlot::Cleanup cleanup;
};
constexpr size_t kMaxSlots = 4;
SRWLOCK cleanupsInUse = SRWLOCK_INIT; // a thread may end while another one frees its slot
CleanupEntry cleanups[kMaxSlots];
size_t cleanupCount = 0;

} // namespace

Ui &systemUi() {
  static DesktopUi desktop;
  return desktop;
}

bool ThreadSlot::allocate(Cleanup cleanup) {
  AcquireSRWLockExclusive(&cleanupsInUse);
  DWORD index = cleanupCount < kMaxSlots ? TlsAlloc() : TLS_OUT_OF_INDEXES;
  bool allocated = index != TLS_OUT_OF_INDEXES;
  if (allocated) cleanups[cleanupCount++] = {index, cleanup};
  ReleaseSRWLockExclusive(&cleanupsInUse);
  if (allocated) index_ = index;
  return allocated;
}

void ThreadSlot::free() {
  if (!allocated()) return;
  AcquireSRWLockExclusive(&cleanupsInUse);
  for (size_t i = 0; i < cleanupCount; ++i)
    if (cleanups[i].index == index_) cleanups[i] = cleanups[--cleanupCount];
  TlsFree(index_);
  ReleaseSRWLockExclusive(&cleanupsInUse);
  index_ = kNone;
}

void *ThreadSlot::get() const {
  return allocated() ? TlsGetValue(index_) : nullptr;
}
bool ThreadSlot::set(void *value) {
  return allocated() && TlsSetValue(index_, value) != 0;
}

void runThreadCleanups() {
  struct Due {
    ThreadSlot::Cleanup cleanup;
    void *value;
  };
  Due due[kMaxSlots];
  size_t dueCount = 0;
  AcquireSRWLockShared(&cleanupsInUse);
  for (size_t i = 0; i < cleanupCount; ++i) {
    void *value = TlsGetValue(cleanups[i].index);
    if (!value) continue;
    TlsSetValue(cleanups[i].index, nullptr);
    due[dueCount++] = {cleanups[i].cleanup, value};
  }
  ReleaseSRWLockShared(&cleanupsInUse);
  for (size_t i = 0; i < dueCount; ++i)
    due[i].cleanup(due[i].value);
}

void adoptUserLocale() {
  char language[100] = "";
  if (GetLocaleInfoA(LOCALE_USER_DEFAULT, LOCALE_SENGLANGUAGE, language, int(sizeof language)) == 0) return;
  std::setlocale(LC_CTYPE, language);
  std::setlocale(LC_COLLATE, language);
}

void sleepMicroseconds(uint32_t microseconds) {
  Sleep((microseconds + 999) / 1000);
}

uint64_t steadyMilliseconds() {
  return GetTickCount64();
}

LocalTime localTime() {
  SYSTEMTIME now;
  GetLocalTime(&now);
  return {now.wYear, now.wMonth, now.wDay, now.wHour, now.wMinute, now.wSecond};
}

uint32_t threadId() {
  return GetCurrentThreadId();
}
uint32_t processId() {
  return GetCurrentProcessId();
}

std::vector<std::string> commandLine(int, char **) {
  SetConsoleOutputCP(CP_UTF8);
  int count = 0;
  LPWSTR *wide = CommandLineToArgvW(GetCommandLineW(), &count);
  std::vector<std::string> arguments;
  for (int i = 0; i < count; ++i)
    arguments.push_back(fromWide(wide[i]));
  LocalFree(wide);
  return arguments;
}

const char kProgramExtension[] = ".exe";

bool errorIsTerminal() {
  DWORD mode;
  return GetConsoleMode(GetStdHandle(STD_ERROR_HANDLE), &mode) != 0;
}

} // namespace platform
