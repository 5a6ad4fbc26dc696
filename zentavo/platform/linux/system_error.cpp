#include "zentavo/platform/system_error.h"

#include <string.h>

#include <cerrno>
#include <string_view>

#include "zentavo/platform/linux/path_bytes.h"

namespace zentavo::platform {

std::uint32_t LastSystemError() {
  return static_cast<std::uint32_t>(errno);
}

// The texts are those of the C library in English, whatever locale the host has set.
std::u16string SystemErrorText(std::uint32_t code) {
  const char* text = strerrordesc_np(static_cast<int>(code));
  return PathFromBytes(text != nullptr ? text : "Unknown error " + std::to_string(code));
}

}  // namespace zentavo::platform
