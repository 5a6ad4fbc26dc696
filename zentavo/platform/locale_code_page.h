// The default ANSI code pages of Windows locale identifiers.
#pragma once

#include <cstdint>

#include "zentavo/platform/export.h"

namespace zentavo::platform {

// Returns 0 for a locale that has only Unicode, and for what is no locale identifier. The
// identifiers of the user's and the system's default, 0x0000, 0x0400, 0x0800, 0x0C00, 0x1000 and
// 0x1400, stand for the user's locale. May be called from any thread.
ZENTAVO_API std::int32_t LocaleCodePage(std::uint32_t locale);

}  // namespace zentavo::platform
