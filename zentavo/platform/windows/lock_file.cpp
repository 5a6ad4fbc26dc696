#include "zentavo/platform/lock_file.h"

#include "zentavo/platform/windows/wide.h"

namespace zentavo::platform {

LockFile::~LockFile() {
  if (handle_ != kClosed) CloseHandle(reinterpret_cast<HANDLE>(handle_));
}

SystemError LockFile::Lock(std::u16string_view path) {
  const HANDLE file = CreateFileW(SystemPath(path).c_str(), GENERIC_READ | GENERIC_WRITE,
                                  FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                  OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) return GetLastError();
  handle_ = reinterpret_cast<std::intptr_t>(file);
  OVERLAPPED start{};
  return ErrorOf(LockFileEx(file, LOCKFILE_EXCLUSIVE_LOCK, 0, 1, 0, &start));
}

}  // namespace zentavo::platform
