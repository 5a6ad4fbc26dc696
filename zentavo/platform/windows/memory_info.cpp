#include "zentavo/platform/memory_info.h"

#include <windows.h>

namespace zentavo::platform {

namespace {

SYSTEM_INFO SystemInfo() {
  SYSTEM_INFO info{};
  GetSystemInfo(&info);
  return info;
}

}  // namespace

std::uint32_t AllocationGranularity() {
  return SystemInfo().dwAllocationGranularity;
}

std::uint32_t PageSize() {
  return SystemInfo().dwPageSize;
}

}  // namespace zentavo::platform
