// Where TickCount takes its milliseconds from.
//
// All functions may be called from any thread.
#pragma once

#include <cstdint>

#include "zentavo/platform/export.h"

namespace zentavo::platform {

using TickSource = std::uint32_t (*)();

// Makes TickCount return what `source` returns, for the whole process, so that a test decides what
// time it is; null brings the system's clock back. Timer queues keep to the system's clock.
ZENTAVO_API void SetTickSource(TickSource source);

// The system's own milliseconds.
std::uint32_t SystemTickCount();

}  // namespace zentavo::platform
