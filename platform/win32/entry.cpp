#include "platform/system.h"
#include "platform/win32/win32.h"

#include <commctrl.h>
#include <objbase.h>

namespace {

constexpr HRESULT kComReleased = -1;

// One value for the process: the first thread that ends gives COM up, whichever it is. Hosts count on that.
HRESULT comResult = kComReleased;

void attachProcess() {
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
