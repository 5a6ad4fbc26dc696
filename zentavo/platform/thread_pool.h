// The process-wide pool of threads that runs short work.
//
// Work starts in the order it was queued, on as many threads as it takes: when all threads are busy
// and work waits, another one starts, up to 512 in all, so that work may wait for other work within
// that bound. Idle threads end after some seconds. On Linux the pool's threads block the signals
// that a host may handle.
//
// The first work keeps the library loaded until the process ends, whoever unloads it. On Linux a
// child made by fork has a pool of its own, empty at first: work queued by its parent runs in the
// parent alone. Work still queued or running when the process ends is cut off.
//
// All functions may be called from any thread, and from work.
#pragma once

#include "zentavo/platform/export.h"

namespace zentavo::platform {

// Must not let an exception out.
using WorkFunction = void (*)(void* context);

// Has a thread of the pool call `function(context)`. Returns false when the system refuses.
ZENTAVO_API bool QueueWork(WorkFunction function, void* context);

// Makes QueueWork call `submitter` instead, for the whole process, so that a test can refuse work
// or run it when it likes; null brings the pool back.
using WorkSubmitter = bool (*)(WorkFunction function, void* context);
ZENTAVO_API void SetWorkSubmitter(WorkSubmitter submitter);

// The pool itself, whatever the submitter.
bool QueueSystemWork(WorkFunction function, void* context);

}  // namespace zentavo::platform
