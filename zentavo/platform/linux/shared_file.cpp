#include "zentavo/platform/linux/shared_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <string>

#include "zentavo/platform/linux/path_bytes.h"

namespace zentavo::platform {

namespace {

constexpr std::u16string_view kLocal = u"Local\\";
constexpr std::u16string_view kGlobal = u"Global\\";
constexpr std::string_view kFolder = "/dev/shm";

void AppendEscaped(std::string& out, std::string_view bytes) {
  for (const char byte : bytes) {
    if (byte == '/') {
      out += "%2F";
    } else if (byte == '%') {
      out += "%25";
    } else {
      out += byte;
    }
  }
}

// "/zentavo-UID-KIND-NAME", the form that shm_open takes; the empty text for a name that is
// refused.
std::string SharedName(SharedKind kind, std::u16string_view name) {
  const bool global = name.starts_with(kGlobal);
  if (global) name.remove_prefix(kGlobal.size());
  if (name.starts_with(kLocal)) name.remove_prefix(kLocal.size());
  if (name.find(u'\\') != name.npos) return {};
  const std::string bytes = PathBytes(name);
  if (bytes.empty()) return {};
  std::string shared = "/zentavo-" + std::to_string(geteuid());
  shared += global ? "-global" : "";
  shared += kind == SharedKind::kMutex ? "-mutex-" : "-memory-";
  AppendEscaped(shared, bytes);
  return shared;
}

bool LockFile(int file, int operation) {
  int result = 0;
  do {
    result = flock(file, operation);
  } while (result == -1 && errno == EINTR);
  return result == 0;
}

// The memory is taken at once: the system ends a program that touches pages it does not have.
SystemError Reserve(int file, std::size_t size) {
  if (ftruncate(file, 0) != 0) return LastSystemError();
  int error = 0;
  do {
    error = posix_fallocate(file, 0, static_cast<off_t>(size));
  } while (error == EINTR);
  return static_cast<SystemError>(error);
}

// The mark of a file that is ready for use. One whose maker died on the way lacks it.
constexpr mode_t kPrepared = S_IXUSR;

SystemError Prepare(int file, std::size_t size, SystemError (*prepare)(int file)) {
  if (fchmod(file, 0600) != 0) return LastSystemError();
  if (const SystemError error = Reserve(file, size)) return error;
  if (prepare != nullptr) {
    if (const SystemError error = prepare(file)) return error;
  }
  return ErrorOf(fchmod(file, 0600 | kPrepared));
}

struct FileState {
  bool named = false;  // it can still be opened
  bool prepared = false;
  bool own = false;  // this user's
};

FileState StateOf(int file) {
  struct stat status {};
  if (fstat(file, &status) != 0) return {};
  return {status.st_nlink > 0, (status.st_mode & kPrepared) != 0, status.st_uid == geteuid()};
}

// `file` is opened by its name and not locked. Returns 0 with `joined` telling whether it is used
// now; when it is not, the file lost its name meanwhile and is to be opened again.
SystemError Join(int file, std::size_t size, SystemError (*prepare)(int file), bool& joined) {
  joined = false;
  if (!StateOf(file).own) return EACCES;
  if (LockFile(file, LOCK_EX | LOCK_NB) && StateOf(file).named) {
    if (const SystemError error = Prepare(file, size, prepare)) return error;
  }
  // Waits for a user that is preparing the file. Between the two locks another may do as above, or
  // come and go.
  if (!LockFile(file, LOCK_SH)) return LastSystemError();
  const FileState state = StateOf(file);
  joined = state.named && state.prepared;
  return 0;
}

std::string PathOf(int file) {
  char target[PATH_MAX];
  const std::string link = "/proc/self/fd/" + std::to_string(file);
  const ssize_t size = readlink(link.c_str(), target, sizeof target);
  return size < 0 ? std::string() : std::string(target, static_cast<std::size_t>(size));
}

}  // namespace

SystemError OpenSharedFile(SharedKind kind, std::u16string_view name, std::size_t size,
                           SystemError (*prepare)(int file), int& file) {
  const std::string shared = SharedName(kind, name);
  if (shared.empty() || size == 0) return EINVAL;
  for (;;) {
    const int opened = shm_open(shared.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (opened == -1) return LastSystemError();
    bool joined = false;
    const SystemError error = Join(opened, size, prepare, joined);
    if (joined) {
      file = opened;
      return 0;
    }
    CloseSharedFile(opened);
    if (error != 0) return error;
  }
}

void CloseSharedFile(int file) {
  if (LockFile(file, LOCK_EX | LOCK_NB) && StateOf(file).named) {
    const std::string path = PathOf(file);
    if (path.starts_with(kFolder)) unlink(path.c_str());
  }
  close(file);
}

}  // namespace zentavo::platform
