#include "platform/system.h"
#include "platform/win32/win32.h"

#include <commctrl.h>
#include <objbase.h>

namespace {

constexpr HRESULT kComReleased = -1;

// One value for the process: the first thread that ends gives COM up, whichever it is. Hosts count on that.
HRESULT comResult = kComReleased;

void attachProcess() {
  // The library stays, also when a host frees it: the runtime of threads that is linked into it loses three handles and
  // a thread-local slot with each unloading, and threads that still run carry contexts, whose clean-up lies here.
  HMODULE self;
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                     reinterpret_cast<LPCWSTR>(&attachProcess), &self);
  comResult = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  INITCOMMONCONTROLSEX controls{sizeof controls,
                                ICC_WIN95_CLASSES | ICC_DATE_CLASSES | ICC_USEREX_CLASSES | ICC_STANDARD_CLASSES};
  InitCommonControlsEx(&controls);
}

} // namespace

namespace platform {

void releaseProcessInitialisation() {
  if (comResult < 0) return;
  CoUninitialize();
  comResult = kComReleased;
}

} // namespace platform

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID) {
  if (reason == DLL_PROCESS_ATTACH) attachProcess();
  if (reason == DLL_THREAD_DETACH) {
    platform::releaseProcessInitialisation();
    platform::runThreadCleanups();
  }
  return TRUE;
}
