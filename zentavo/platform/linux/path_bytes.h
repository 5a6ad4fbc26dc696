// Paths as the system takes them: UTF-8 bytes.
#pragma once

#include <cerrno>
#include <string>
#include <string_view>

#include "zentavo/platform/code_pages.h"
#include "zentavo/platform/system_error.h"

namespace zentavo::platform {

// Returns `path` in UTF-8. A path with a zero unit inside gives the empty path, which the system
// refuses, so that it never stands for the shorter path before the zero.
inline std::string PathBytes(std::u16string_view path) {
  if (path.find(u'\0') != path.npos) return {};
  return *EncodeCodePage(path, kCodePageUtf8);
}

inline std::u16string PathFromBytes(std::string_view bytes) {
  return *DecodeCodePage(bytes, kCodePageUtf8);
}

// 0 for a system call's success, else its error code.
inline SystemError ErrorOf(int result) {
  return result == -1 ? static_cast<SystemError>(errno) : 0;
}

}  // namespace zentavo::platform
