// Threads that the library starts, and what becomes of them when the process forks or unloads it.
#pragma once

#include <cstdint>

namespace zentavo::platform {

// Starts a detached thread that calls `function(context)`. It blocks the signals that a host may
// handle, so that they reach the host's threads. Returns false when the system refuses. The first
// thread pins the library: its code stays loaded until the process ends.
bool StartOwnThread(void (*function)(void*), void* context);

// How often this process was forked off since the library's first own thread: a number that tells
// whether threads seen earlier still exist.
std::uint32_t ForkGeneration();

}  // namespace zentavo::platform
