#include "zentavo/foundation/helper_unit.h"

#include "zentavo/platform/memory_info.h"

namespace zentavo {

constinit std::uint32_t XAllocationGranularity = 0;

void InitializeHelper() {
  XAllocationGranularity = platform::AllocationGranularity();
}

}  // namespace zentavo
