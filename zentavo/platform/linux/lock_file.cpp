#include "zentavo/platform/lock_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>

#include "zentavo/platform/linux/path_bytes.h"

namespace zentavo::platform {

LockFile::~LockFile() {
  if (handle_ != kClosed) close(static_cast<int>(handle_));
}

SystemError LockFile::Lock(std::u16string_view path) {
  handle_ = open(PathBytes(path).c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  if (handle_ == kClosed) return LastSystemError();
  int result = 0;
  do {
    result = flock(static_cast<int>(handle_), LOCK_EX);
  } while (result == -1 && errno == EINTR);
  return ErrorOf(result);
}

}  // namespace zentavo::platform
