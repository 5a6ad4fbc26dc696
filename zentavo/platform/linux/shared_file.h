// The files in /dev/shm behind named memory and named mutexes.
//
// Each user of a name holds a shared file lock on its file, which the system gives up when the user
// dies. So a file that nobody has locked is left over: whoever opens the name empties it first, and
// whoever closes it last removes it.
#pragma once

#include <cstddef>
#include <string_view>

#include "zentavo/platform/system_error.h"

namespace zentavo::platform {

enum class SharedKind { kMemory, kMutex };

// Opens the file of `name` with `size` bytes, or with those that it has. A new file is filled with
// zeros and then by `prepare`, unless that is null, before anybody else sees it; `prepare` gets the
// file's descriptor. Returns 0 with `file` set to the descriptor, or the system's error code.
SystemError OpenSharedFile(SharedKind kind, std::u16string_view name, std::size_t size,
                           SystemError (*prepare)(int file), int& file);

// Closes the file, and removes it when nobody else uses it.
void CloseSharedFile(int file);

}  // namespace zentavo::platform
