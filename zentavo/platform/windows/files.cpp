#include "zentavo/platform/files.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "zentavo/platform/windows/wide.h"

namespace zentavo::platform {

namespace {

constexpr std::size_t kLongestTransfer = 1 << 30;  // bytes in one system call

HANDLE SystemHandle(std::intptr_t handle) {
  return reinterpret_cast<HANDLE>(handle);
}

DWORD AccessFlags(FileAccess access) {
  switch (access) {
    case FileAccess::kRead: return GENERIC_READ;
    case FileAccess::kWrite: return GENERIC_WRITE;
    case FileAccess::kReadWrite: break;
  }
  return GENERIC_READ | GENERIC_WRITE;
}

DWORD SharingFlags(FileSharing sharing) {
  switch (sharing) {
    case FileSharing::kNone: return 0;
    case FileSharing::kRead: return FILE_SHARE_READ;
    case FileSharing::kReadWrite: break;
  }
  return FILE_SHARE_READ | FILE_SHARE_WRITE;
}

DWORD Disposition(FileCreation creation) {
  switch (creation) {
    case FileCreation::kOpenExisting: return OPEN_EXISTING;
    case FileCreation::kCreateOrTruncate: return CREATE_ALWAYS;
    case FileCreation::kOpenOrCreate: return OPEN_ALWAYS;
    case FileCreation::kCreateNew:
    case FileCreation::kCreatePrivate: break;
  }
  return CREATE_NEW;
}

DWORD MoveMethod(SeekOrigin origin) {
  switch (origin) {
    case SeekOrigin::kBegin: return FILE_BEGIN;
    case SeekOrigin::kCurrent: return FILE_CURRENT;
    case SeekOrigin::kEnd: break;
  }
  return FILE_END;
}

// Repeats `transfer(start, size, count)` until `size` bytes are done, the end is reached or the
// system refuses.
template <typename Transfer>
SystemError TransferAll(std::size_t size, std::size_t& done, Transfer transfer) {
  done = 0;
  while (done < size) {
    DWORD count = 0;
    const auto piece = static_cast<DWORD>(std::min(size - done, kLongestTransfer));
    if (!transfer(done, piece, &count)) return GetLastError();
    if (count == 0) break;
    done += count;
  }
  return 0;
}

SystemError FlushPath(std::u16string_view path) {
  File file;
  const SystemError error =
      file.Open(path, FileAccess::kWrite, FileSharing::kReadWrite, FileCreation::kOpenExisting);
  return error != 0 ? error : file.Flush();
}

std::wstring FinalPath(const std::wstring& path) {
  const HANDLE file =
      CreateFileW(path.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                  OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
  if (file == INVALID_HANDLE_VALUE) return {};
  std::wstring found(GetFinalPathNameByHandleW(file, nullptr, 0, VOLUME_NAME_DOS), L'\0');
  found.resize(GetFinalPathNameByHandleW(file, found.data(), static_cast<DWORD>(found.size()),
                                         VOLUME_NAME_DOS));
  CloseHandle(file);
  return found;
}

// Without the prefix of the form that has no length limit.
std::wstring PlainForm(const std::wstring& path) {
  if (path.starts_with(LR"(\\?\UNC\)")) return LR"(\\)" + path.substr(8);
  return path.starts_with(LR"(\\?\)") ? path.substr(4) : path;
}

// Gives `source` the access list and the visible attributes of `target`, where the file system has
// access lists.
SystemError TakeOver(const std::wstring& source, const std::wstring& target) {
  constexpr DWORD kKept = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_ARCHIVE;
  const DWORD attributes = GetFileAttributesW(target.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES) return GetLastError();
  if ((attributes & kKept) != 0) SetFileAttributesW(source.c_str(), attributes & kKept);
  DWORD size = 0;
  GetFileSecurityW(target.c_str(), DACL_SECURITY_INFORMATION, nullptr, 0, &size);
  std::vector<std::byte> rights(size);
  if (size == 0 ||
      !GetFileSecurityW(target.c_str(), DACL_SECURITY_INFORMATION, rights.data(), size, &size)) {
    return 0;
  }
  return ErrorOf(SetFileSecurityW(source.c_str(), DACL_SECURITY_INFORMATION, rights.data()));
}

}  // namespace

SystemError File::Open(std::u16string_view path, FileAccess access, FileSharing sharing,
                       FileCreation creation) {
  Close();
  const HANDLE file =
      CreateFileW(SystemPath(path).c_str(), AccessFlags(access), SharingFlags(sharing), nullptr,
                  Disposition(creation), FILE_ATTRIBUTE_NORMAL, nullptr);
  handle_ = reinterpret_cast<std::intptr_t>(file);
  return IsOpen() ? 0 : GetLastError();
}

void File::Close() {
  if (IsOpen()) CloseHandle(SystemHandle(std::exchange(handle_, kClosed)));
}

SystemError File::Read(std::span<std::byte> buffer, std::size_t& done) {
  const SystemError error =
      TransferAll(buffer.size(), done, [&](std::size_t start, DWORD size, DWORD* count) {
        return ReadFile(SystemHandle(handle_), buffer.data() + start, size, count, nullptr);
      });
  return error == ERROR_BROKEN_PIPE ? 0 : error;  // a pipe's end
}

SystemError File::Write(std::span<const std::byte> buffer, std::size_t& done) {
  return TransferAll(buffer.size(), done, [&](std::size_t start, DWORD size, DWORD* count) {
    return WriteFile(SystemHandle(handle_), buffer.data() + start, size, count, nullptr);
  });
}

SystemError File::Seek(std::int64_t offset, SeekOrigin origin, std::int64_t& position) {
  LARGE_INTEGER distance{};
  LARGE_INTEGER result{};
  distance.QuadPart = offset;
  if (!SetFilePointerEx(SystemHandle(handle_), distance, &result, MoveMethod(origin))) {
    return GetLastError();
  }
  position = result.QuadPart;
  return 0;
}

SystemError File::Size(std::int64_t& size) {
  LARGE_INTEGER result{};
  if (!GetFileSizeEx(SystemHandle(handle_), &result)) return GetLastError();
  size = result.QuadPart;
  return 0;
}

SystemError File::TruncateHere() {
  return ErrorOf(SetEndOfFile(SystemHandle(handle_)));
}

SystemError File::Flush() {
  return ErrorOf(FlushFileBuffers(SystemHandle(handle_)));
}

bool FileExists(std::u16string_view path) {
  const DWORD attributes = GetFileAttributesW(SystemPath(path).c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

bool IsDevice(std::u16string_view path) {
  const HANDLE file = CreateFileW(SystemPath(path).c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                  nullptr, OPEN_EXISTING, 0, nullptr);
  if (file == INVALID_HANDLE_VALUE) return false;
  const DWORD type = GetFileType(file);
  CloseHandle(file);
  return type == FILE_TYPE_CHAR || type == FILE_TYPE_PIPE;
}

SystemError RemoveFile(std::u16string_view path) {
  return ErrorOf(DeleteFileW(SystemPath(path).c_str()));
}

// Moving replaces in one step, where the system's own replacing moves the old file away first; but
// the new file keeps its own rights.
SystemError ReplaceFileBy(std::u16string_view from, std::u16string_view to) {
  if (const SystemError error = FlushPath(from)) return error;
  const std::wstring source = SystemPath(from);
  const std::wstring target = SystemPath(to);
  if (FileExists(to)) {
    if (const SystemError error = TakeOver(source, target)) return error;
  }
  return ErrorOf(MoveFileExW(source.c_str(), target.c_str(),
                             MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH));
}

// For a moment a file that is being replaced cannot be opened, or is about to be deleted.
bool MayPass(SystemError error) {
  return error == ERROR_SHARING_VIOLATION || error == ERROR_ACCESS_DENIED ||
         error == ERROR_LOCK_VIOLATION;
}

std::u16string ResolveLink(std::u16string_view path) {
  const std::wstring link = SystemPath(path);
  const DWORD attributes = GetFileAttributesW(link.c_str());
  const bool is_link =
      attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
  const std::wstring found = is_link ? FinalPath(link) : std::wstring();
  return found.empty() ? std::u16string(path) : FromWide(PlainForm(found));
}

}  // namespace zentavo::platform
