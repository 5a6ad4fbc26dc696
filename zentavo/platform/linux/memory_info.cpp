#include "zentavo/platform/memory_info.h"

#include <unistd.h>

namespace zentavo::platform {

std::uint32_t AllocationGranularity() {
  return PageSize();
}

std::uint32_t PageSize() {
  return static_cast<std::uint32_t>(sysconf(_SC_PAGESIZE));
}

}  // namespace zentavo::platform
