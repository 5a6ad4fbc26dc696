// Sizes of the system's memory management.
#pragma once

#include <cstdint>

#include "zentavo/platform/export.h"

namespace zentavo::platform {

// Offsets into mapped memory are multiples of this, in bytes: 65,536 on Windows, the page size on
// Linux.
ZENTAVO_API std::uint32_t AllocationGranularity();
ZENTAVO_API std::uint32_t PageSize();

}  // namespace zentavo::platform
