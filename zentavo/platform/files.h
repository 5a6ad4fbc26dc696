// Files: open, read, write, seek, replace. Paths are UTF-16; on Linux they are UTF-8 in the system.
//
// A File is used by one thread at a time; the free functions may be called from any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "zentavo/platform/export.h"
#include "zentavo/platform/system_error.h"

namespace zentavo::platform {

enum class FileAccess { kRead, kWrite, kReadWrite };

// What other openers may do meanwhile. Windows enforces it for everyone; Linux has no such lock, so
// there it only keeps the library's own openers apart, by an advisory lock: kNone, and kRead of a
// writer, refuse every opener that locks; kRead of a reader refuses those two. A kReadWrite writer
// only keeps those two out, and a kReadWrite reader takes no lock. A file system without locks
// grants every opening. A refused opening leaves the file's content as it was.
enum class FileSharing { kNone, kRead, kReadWrite };

// kCreateNew fails where something is already; kCreatePrivate too, and on Linux lets the owner
// alone read and write the file.
enum class FileCreation {
  kOpenExisting,
  kCreateOrTruncate,
  kOpenOrCreate,
  kCreateNew,
  kCreatePrivate
};

enum class SeekOrigin { kBegin, kCurrent, kEnd };

// An open file. Movable, not copyable; closes when destroyed.
class ZENTAVO_API File {
 public:
  File() = default;
  File(File&& other) noexcept;
  File& operator=(File&& other) noexcept;
  ~File();

  // Opens `path` after closing what was open. Returns 0 or the system's error code; a directory is
  // an error. On failure the object is closed.
  SystemError Open(std::u16string_view path, FileAccess access, FileSharing sharing,
                   FileCreation creation);
  void Close();
  bool IsOpen() const { return handle_ != kClosed; }

  // Transfer up to the span's size; `done` tells how much. Reading 0 bytes means the end.
  // Interrupted and partial system calls are resumed.
  SystemError Read(std::span<std::byte> buffer, std::size_t& done);
  SystemError Write(std::span<const std::byte> buffer, std::size_t& done);

  SystemError Seek(std::int64_t offset, SeekOrigin origin, std::int64_t& position);
  SystemError Size(std::int64_t& size);
  // Cuts or extends the file to its current position.
  SystemError TruncateHere();
  // Forces what was written to the disk.
  SystemError Flush();

 private:
  static constexpr std::intptr_t kClosed = -1;
  std::intptr_t handle_ = kClosed;
};

ZENTAVO_API bool FileExists(std::u16string_view path);  // false for a directory
// Whether `path` leads to something that is neither a file on a disk nor a directory: a device or a
// pipe.
ZENTAVO_API bool IsDevice(std::u16string_view path);
ZENTAVO_API SystemError RemoveFile(std::u16string_view path);

// Puts `from` in the place of `to` in one step (a reader sees the old or the new file, never a
// mixture); flushes `from` before and the folder behind. Both lie on one file system. `to` need not
// exist; where it does its permissions, and on Linux its owner where the system allows it, pass to
// the new file.
ZENTAVO_API SystemError ReplaceFileBy(std::u16string_view from, std::u16string_view to);

// Whether `error` from opening or replacing a file may only mean that another process does the same
// at this moment, so that another try is worth it. Never on Linux, where neither gets in the way.
ZENTAVO_API bool MayPass(SystemError error);

// Returns the path that `path` leads to when it is a symbolic link (followed to its end, whether or
// not anything is there; on Windows a link to nothing stays unresolved), else `path` itself. So
// does a link that leads in a circle.
ZENTAVO_API std::u16string ResolveLink(std::u16string_view path);

}  // namespace zentavo::platform
