// A lock that processes and threads share by a file.
#pragma once

#include <cstdint>
#include <string_view>

#include "zentavo/platform/export.h"
#include "zentavo/platform/system_error.h"

namespace zentavo::platform {

// Holds the lock from Lock to its destruction; the system gives it up for a process that dies. The
// file stays. Neither copied nor moved.
class ZENTAVO_API LockFile {
 public:
  LockFile() = default;
  LockFile(const LockFile&) = delete;
  LockFile& operator=(const LockFile&) = delete;
  ~LockFile();

  // Waits for the lock on `path`, which is created where it is missing. To be called once. Returns
  // 0 or the system's error code.
  SystemError Lock(std::u16string_view path);

 private:
  static constexpr std::intptr_t kClosed = -1;
  std::intptr_t handle_ = kClosed;
};

}  // namespace zentavo::platform
