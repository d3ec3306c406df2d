/// Shared by the Windows implementation only.
#pragma once

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef _WIN32_WINNT
#define _WIN32_WINNT 0x0601
#endif
#include <windows.h>

#include <string>

namespace platform {

std::wstring toWide(const std::string &utf8);
std::string fromWide(const wchar_t *text, int length = -1);

/// Called by the library's entry point when a thread ends.
void runThreadCleanups();

} // namespace platform
