#include "zentavo/platform/directories.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>

#include "zentavo/platform/linux/path_bytes.h"

namespace zentavo::platform {

namespace {

// What the grant gives: everything for everyone, and the group passed on to new entries.
constexpr mode_t kFullAccess = S_ISGID | S_IRWXU | S_IRWXG | S_IRWXO;

// Behind a trailing separator the system would follow a symbolic link.
std::string WithoutTrailingSeparators(std::string path) {
  while (path.size() > 1 && path.back() == '/') path.pop_back();
  return path;
}

bool GrantOn(int directory) {
  struct stat status {};
  if (fstat(directory, &status) != 0) return false;
  const mode_t mode = status.st_mode & 07777;
  return (mode & kFullAccess) == kFullAccess || fchmod(directory, mode | kFullAccess) == 0;
}

}  // namespace

char16_t PathSeparator() {
  return u'/';
}

bool IsPathDelimiter(char16_t unit) {
  return unit == u'/';
}

bool DirectoryExists(std::u16string_view path) {
  struct stat status {};
  return stat(PathBytes(path).c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

SystemError MakeDirectory(std::u16string_view path) {
  return ErrorOf(mkdir(PathBytes(path).c_str(), 0777));
}

SystemError RemoveEmptyDirectory(std::u16string_view path) {
  return ErrorOf(rmdir(PathBytes(path).c_str()));
}

std::u16string TemporaryDirectory() {
  const char* set = std::getenv("TMPDIR");
  std::u16string path = PathFromBytes(set != nullptr && *set != '\0' ? set : "/tmp");
  if (path.back() != u'/') path += u'/';
  return path;
}

bool GrantFullAccess(std::u16string_view path) {
  const std::string bytes = WithoutTrailingSeparators(PathBytes(path));
  const int directory = open(bytes.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
  if (directory == -1) return false;
  const bool granted = GrantOn(directory);
  close(directory);
  return granted;
}

}  // namespace zentavo::platform
