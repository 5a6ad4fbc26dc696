// The operating system's error codes, and their texts.
#pragma once

#include <cstdint>
#include <string>

#include "zentavo/platform/export.h"

namespace zentavo::platform {

// The calling thread's last system error: GetLastError on Windows, errno on Linux.
ZENTAVO_API std::uint32_t LastSystemError();

// Returns the system's text for `code`, without a line break at its end.
ZENTAVO_API std::u16string SystemErrorText(std::uint32_t code);

// A result of an operation that the system may refuse: 0, or the system's error code.
using SystemError = std::uint32_t;

}  // namespace zentavo::platform
