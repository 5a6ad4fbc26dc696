// The system's text type and ours: the same units under two names.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

#include "zentavo/platform/system_error.h"

namespace zentavo::platform {

inline wchar_t* AsWide(char16_t* text) {
  return reinterpret_cast<wchar_t*>(text);
}
inline const wchar_t* AsWide(const char16_t* text) {
  return reinterpret_cast<const wchar_t*>(text);
}

inline std::wstring ToWide(std::u16string_view text) {
  return {text.begin(), text.end()};
}
inline std::u16string FromWide(std::wstring_view text) {
  return {text.begin(), text.end()};
}

// 0 for a system call's success, else its error code.
inline SystemError ErrorOf(BOOL result) {
  return result ? 0 : GetLastError();
}

// Returns `path` as the system takes it: a long absolute path in the form without a length limit. A
// path with a zero unit inside gives the empty path, which the system refuses, so that it never
// stands for the shorter path before the zero.
std::wstring SystemPath(std::u16string_view path);

}  // namespace zentavo::platform
