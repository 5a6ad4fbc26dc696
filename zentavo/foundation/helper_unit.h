// What the helper unit sets up when the library is loaded.
#pragma once

#include <cstdint>

#include "zentavo/platform/export.h"

namespace zentavo {

// Offsets into mapped memory are multiples of this, in bytes. Set when the library is loaded.
extern ZENTAVO_API std::uint32_t XAllocationGranularity;

void InitializeHelper();

}  // namespace zentavo
