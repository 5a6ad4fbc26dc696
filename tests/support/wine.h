// Whether a test runs under Wine, whose system functions fall short of Windows' own here and there.
#pragma once

#ifdef _WIN32
#include <windows.h>
#endif

namespace zentavo::testing {

inline bool RunsUnderWine() {
#ifdef _WIN32
  return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
#else
  return false;
#endif
}

}  // namespace zentavo::testing
