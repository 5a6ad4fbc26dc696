// How lines end in the platform's text files.
#pragma once

#include <string_view>

#include "zentavo/platform/export.h"

namespace zentavo::platform {

// CR LF on Windows, LF on Linux.
ZENTAVO_API std::u16string_view LineBreak();

}  // namespace zentavo::platform
