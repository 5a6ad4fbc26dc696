#include "zentavo/platform/shared_memory.h"

#include <utility>

#include "zentavo/platform/windows/shared_name.h"

namespace zentavo::platform {

namespace {

HANDLE Handle(std::intptr_t handle) {
  return reinterpret_cast<HANDLE>(handle);
}

}  // namespace

SystemError SharedMemory::Open(std::u16string_view name, std::uint32_t size) {
  Close();
  const std::wstring system_name = SharedName(name);
  if (system_name.empty()) return ERROR_INVALID_NAME;
  const HANDLE mapping = CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, size,
                                            system_name.c_str());
  if (mapping == nullptr) return GetLastError();
  handle_ = reinterpret_cast<std::intptr_t>(mapping);
  return 0;
}

void SharedMemory::Close() {
  if (IsOpen()) CloseHandle(Handle(std::exchange(handle_, kClosed)));
}

void* SharedMemory::MapView(std::uint32_t offset, std::size_t size, SystemError& error) const {
  void* view = MapViewOfFile(Handle(handle_), FILE_MAP_WRITE, 0, offset, size);
  error = view != nullptr ? 0 : GetLastError();
  return view;
}

void UnmapView(void* view, std::size_t) {
  UnmapViewOfFile(view);
}

std::size_t MappedSize(const void* address) {
  MEMORY_BASIC_INFORMATION region{};
  if (VirtualQuery(address, &region, sizeof region) == 0) return 0;
  return region.State == MEM_FREE ? 0 : region.RegionSize;
}

}  // namespace zentavo::platform
