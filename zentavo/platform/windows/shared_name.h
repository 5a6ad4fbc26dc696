// Names of memory and mutexes as the system takes them.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "zentavo/platform/windows/wide.h"

namespace zentavo::platform {

constexpr std::size_t kLongestSharedName = 260;  // units; the system would cut much longer ones

// Returns the empty text for a name that the system would take for another one, or for none.
inline std::wstring SharedName(std::u16string_view name) {
  if (name.size() > kLongestSharedName || name.find(u'\0') != name.npos) return {};
  return ToWide(name);
}

}  // namespace zentavo::platform
