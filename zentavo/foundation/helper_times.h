// Processor times. All functions may be called from any thread.
#pragma once

#include <cstdint>

#include "zentavo/platform/export.h"

namespace zentavo {

// Kernel and user time of a thread of this process in units of 100 ns; 0 when there is none.
ZENTAVO_API std::int64_t XGetThreadTime(std::uint32_t ThreadId);

// Cycles that the calling thread has run; -1 when the system does not tell.
ZENTAVO_API std::int64_t XGetCPUThreadCycles();

// The whole system's processor load in percent since the previous call of the process; 0 at the
// first call and when no time has passed, -1 when the system does not tell.
ZENTAVO_API std::int32_t XGetTotalCPU();

}  // namespace zentavo
