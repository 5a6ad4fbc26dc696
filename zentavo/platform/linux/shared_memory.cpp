#include "zentavo/platform/shared_memory.h"

#include <sys/mman.h>
#include <sys/stat.h>

#include <cerrno>
#include <cinttypes>
#include <cstdio>
#include <memory>
#include <utility>

#include "zentavo/platform/linux/shared_file.h"
#include "zentavo/platform/memory_info.h"

namespace zentavo::platform {

namespace {

int Descriptor(std::intptr_t handle) {
  return static_cast<int>(handle);
}

// Rounded up to whole pages, as it is mapped.
std::size_t FileSize(int file) {
  struct stat status {};
  if (fstat(file, &status) != 0) return 0;
  const std::size_t page = PageSize();
  return (static_cast<std::size_t>(status.st_size) + page - 1) / page * page;
}

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

}  // namespace

SystemError SharedMemory::Open(std::u16string_view name, std::uint32_t size) {
  Close();
  int file = -1;
  const SystemError error = OpenSharedFile(SharedKind::kMemory, name, size, nullptr, file);
  if (error == 0) handle_ = file;
  return error;
}

void SharedMemory::Close() {
  if (IsOpen()) CloseSharedFile(Descriptor(std::exchange(handle_, kClosed)));
}

// A view beyond the file's end could be mapped, but every access to it would end the program.
void* SharedMemory::MapView(std::uint32_t offset, std::size_t size, SystemError& error) const {
  error = EINVAL;
  const std::size_t total = IsOpen() ? FileSize(Descriptor(handle_)) : 0;
  if (offset >= total || size > total - offset) return nullptr;
  void* view = mmap(nullptr, size != 0 ? size : total - offset, PROT_READ | PROT_WRITE, MAP_SHARED,
                    Descriptor(handle_), offset);
  if (view == MAP_FAILED) {
    error = LastSystemError();
    return nullptr;
  }
  error = 0;
  return view;
}

void UnmapView(void* view, std::size_t size) {
  munmap(view, size != 0 ? size : MappedSize(view));
}

// Each line of the file begins with the bounds of one region, in ascending order.
std::size_t MappedSize(const void* address) {
  const std::unique_ptr<std::FILE, CloseFile> maps(std::fopen("/proc/self/maps", "re"));
  const auto wanted = reinterpret_cast<std::uintptr_t>(address);
  std::uintptr_t begin = 0;
  std::uintptr_t end = 0;
  while (maps && std::fscanf(maps.get(), "%" SCNxPTR "-%" SCNxPTR "%*[^\n]", &begin, &end) == 2) {
    if (wanted >= begin && wanted < end) return end - wanted / PageSize() * PageSize();
  }
  return 0;
}

}  // namespace zentavo::platform
