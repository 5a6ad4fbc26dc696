// Ticks, wall clock, and processor times. All functions may be called from any thread.
#pragma once

#include <cstdint>

#include "zentavo/platform/export.h"

namespace zentavo::platform {

// Milliseconds of a clock that never goes back, from an arbitrary start, wrapping at 2^32.
ZENTAVO_API std::uint32_t TickCount();

struct LocalTime {
  int year, month, day, hour, minute, second, millisecond;
};
// The wall-clock time in the user's time zone.
ZENTAVO_API LocalTime CurrentLocalTime();

// The calling thread's number, as ThreadTime takes it.
ZENTAVO_API std::uint32_t CurrentThreadNumber();
// Kernel and user time of a thread of this process in units of 100 ns; 0 when there is no such
// thread or the system refuses.
ZENTAVO_API std::int64_t ThreadTime(std::uint32_t thread_number);
// Kernel and user time of this process in units of 100 ns.
ZENTAVO_API std::int64_t ProcessTime();

// Cycles that the calling thread has run, -1 when the system does not tell.
ZENTAVO_API std::int64_t ThreadCycles();

// The whole system's processor times since its start, in one unit. `total` counts idle time too.
struct SystemTimes {
  std::uint64_t total = 0;
  std::uint64_t idle = 0;
};
// Returns false when the system does not tell.
ZENTAVO_API bool ReadSystemTimes(SystemTimes& times);

}  // namespace zentavo::platform
