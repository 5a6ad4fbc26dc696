#include "zentavo/platform/files.h"

#include <fcntl.h>
#include <limits.h>
#include <stdio.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <optional>
#include <utility>

#include "zentavo/platform/linux/path_bytes.h"

namespace zentavo::platform {

namespace {

int Descriptor(std::intptr_t handle) {
  return static_cast<int>(handle);
}

// Creating does not truncate here: a file that another opener has locked keeps its content.
int OpenFlags(FileAccess access, FileCreation creation) {
  int flags = O_CLOEXEC | O_NOCTTY;
  switch (access) {
    case FileAccess::kRead: flags |= O_RDONLY; break;
    case FileAccess::kWrite: flags |= O_WRONLY; break;
    case FileAccess::kReadWrite: flags |= O_RDWR; break;
  }
  switch (creation) {
    case FileCreation::kOpenExisting: break;
    case FileCreation::kCreateOrTruncate:
    case FileCreation::kOpenOrCreate: flags |= O_CREAT; break;
    case FileCreation::kCreateNew:
    case FileCreation::kCreatePrivate: flags |= O_CREAT | O_EXCL; break;
  }
  return flags;
}

std::optional<int> LockKind(FileAccess access, FileSharing sharing) {
  const bool reads_only = access == FileAccess::kRead;
  switch (sharing) {
    case FileSharing::kNone: return LOCK_EX;
    case FileSharing::kRead: return reads_only ? LOCK_SH : LOCK_EX;
    case FileSharing::kReadWrite: break;
  }
  return reads_only ? std::nullopt : std::optional(LOCK_SH);
}

SystemError Lock(int file, FileAccess access, FileSharing sharing) {
  const std::optional<int> kind = LockKind(access, sharing);
  if (!kind || flock(file, *kind | LOCK_NB) == 0 || errno != EWOULDBLOCK) return 0;
  return EWOULDBLOCK;
}

SystemError RefuseDirectory(int file) {
  struct stat status {};
  if (fstat(file, &status) != 0) return LastSystemError();
  return S_ISDIR(status.st_mode) ? EISDIR : 0;
}

SystemError Prepare(int file, FileAccess access, FileSharing sharing, FileCreation creation) {
  if (const SystemError error = RefuseDirectory(file)) return error;
  if (const SystemError error = Lock(file, access, sharing)) return error;
  return creation == FileCreation::kCreateOrTruncate ? ErrorOf(ftruncate(file, 0)) : 0;
}

int Whence(SeekOrigin origin) {
  switch (origin) {
    case SeekOrigin::kBegin: return SEEK_SET;
    case SeekOrigin::kCurrent: return SEEK_CUR;
    case SeekOrigin::kEnd: return SEEK_END;
  }
  return SEEK_SET;
}

// Repeats `transfer(done)` until `size` bytes are done, the end is reached or the system refuses.
template <typename Transfer>
SystemError TransferAll(std::size_t size, std::size_t& done, Transfer transfer) {
  done = 0;
  while (done < size) {
    const ssize_t count = transfer(done);
    if (count == 0) break;
    if (count > 0) {
      done += static_cast<std::size_t>(count);
    } else if (errno != EINTR) {
      return LastSystemError();
    }
  }
  return 0;
}

std::string FolderOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  if (slash == path.npos) return ".";
  return path.substr(0, slash == 0 ? 1 : slash);
}

SystemError FlushPath(const std::string& path) {
  const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (file == -1) return LastSystemError();
  const SystemError error = ErrorOf(fsync(file));
  close(file);
  return error;
}

// The mode last: giving a file away clears the set-ID bits, and they must not outlive a refused
// change of owner.
SystemError TakeOver(int file, const struct stat& old) {
  const bool given = fchown(file, old.st_uid, old.st_gid) == 0;
  return ErrorOf(fchmod(file, old.st_mode & (given ? 07777U : 0777U)));
}

SystemError TakeOverAndFlush(const std::string& from, const std::string& to) {
  const int file = open(from.c_str(), O_RDONLY | O_CLOEXEC);
  if (file == -1) return LastSystemError();
  struct stat old {};
  SystemError error = stat(to.c_str(), &old) == 0 ? TakeOver(file, old) : 0;
  if (error == 0) error = ErrorOf(fsync(file));
  close(file);
  return error;
}

// Where one symbolic link leads, nothing when `path` is none.
std::optional<std::string> LinkTarget(const std::string& path) {
  std::string target(PATH_MAX, '\0');
  const ssize_t size = readlink(path.c_str(), target.data(), target.size());
  if (size <= 0) return std::nullopt;
  target.resize(static_cast<std::size_t>(size));
  const std::size_t slash = path.rfind('/');
  if (target.front() == '/' || slash == path.npos) return target;
  return path.substr(0, slash + 1) + target;
}

}  // namespace

SystemError File::Open(std::u16string_view path, FileAccess access, FileSharing sharing,
                       FileCreation creation) {
  Close();
  const std::string bytes = PathBytes(path);
  const mode_t mode = creation == FileCreation::kCreatePrivate ? 0600 : 0666;
  int file = -1;
  do {
    file = open(bytes.c_str(), OpenFlags(access, creation), mode);
  } while (file == -1 && errno == EINTR);
  if (file == -1) return LastSystemError();
  handle_ = file;
  const SystemError error = Prepare(file, access, sharing, creation);
  if (error != 0) Close();
  return error;
}

void File::Close() {
  if (IsOpen()) close(Descriptor(std::exchange(handle_, kClosed)));
}

SystemError File::Read(std::span<std::byte> buffer, std::size_t& done) {
  return TransferAll(buffer.size(), done, [&](std::size_t start) {
    return read(Descriptor(handle_), buffer.data() + start, buffer.size() - start);
  });
}

SystemError File::Write(std::span<const std::byte> buffer, std::size_t& done) {
  return TransferAll(buffer.size(), done, [&](std::size_t start) {
    return write(Descriptor(handle_), buffer.data() + start, buffer.size() - start);
  });
}

SystemError File::Seek(std::int64_t offset, SeekOrigin origin, std::int64_t& position) {
  const off_t result = lseek(Descriptor(handle_), offset, Whence(origin));
  if (result == -1) return LastSystemError();
  position = result;
  return 0;
}

SystemError File::Size(std::int64_t& size) {
  struct stat status {};
  if (fstat(Descriptor(handle_), &status) != 0) return LastSystemError();
  size = status.st_size;
  return 0;
}

SystemError File::TruncateHere() {
  std::int64_t position = 0;
  if (const SystemError error = Seek(0, SeekOrigin::kCurrent, position)) return error;
  return ErrorOf(ftruncate(Descriptor(handle_), position));
}

SystemError File::Flush() {
  return ErrorOf(fsync(Descriptor(handle_)));
}

bool FileExists(std::u16string_view path) {
  struct stat status {};
  return stat(PathBytes(path).c_str(), &status) == 0 && !S_ISDIR(status.st_mode);
}

bool IsDevice(std::u16string_view path) {
  struct stat status {};
  return stat(PathBytes(path).c_str(), &status) == 0 && !S_ISREG(status.st_mode) &&
         !S_ISDIR(status.st_mode);
}

SystemError RemoveFile(std::u16string_view path) {
  return ErrorOf(unlink(PathBytes(path).c_str()));
}

SystemError ReplaceFileBy(std::u16string_view from, std::u16string_view to) {
  const std::string source = PathBytes(from);
  const std::string target = PathBytes(to);
  if (const SystemError error = TakeOverAndFlush(source, target)) return error;
  if (rename(source.c_str(), target.c_str()) != 0) return LastSystemError();
  // The file is in its place; a folder that cannot be flushed takes nothing back.
  FlushPath(FolderOf(target));
  return 0;
}

bool MayPass(SystemError) {
  return false;
}

std::u16string ResolveLink(std::u16string_view path) {
  constexpr int kMaxLinks = 40;  // as many as the system itself follows
  std::string current = PathBytes(path);
  for (int i = 0; i < kMaxLinks; ++i) {
    std::optional<std::string> next = LinkTarget(current);
    if (!next) return i == 0 ? std::u16string(path) : PathFromBytes(current);
    current = std::move(*next);
  }
  return std::u16string(path);
}

}  // namespace zentavo::platform
