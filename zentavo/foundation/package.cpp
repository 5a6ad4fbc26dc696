#include "zentavo/foundation/package.h"

#include <cstddef>

namespace zentavo {

void InitializeUnits(std::span<PackageUnit> units) {
  for (PackageUnit& unit : units) {
    if (unit.counter == 0 && unit.initialize != nullptr) unit.initialize();
    --unit.counter;
  }
}

void FinalizeUnits(std::span<PackageUnit> units) {
  for (std::size_t i = units.size(); i-- > 0;) {
    PackageUnit& unit = units[i];
    if (unit.counter == 0) continue;
    if (++unit.counter == 0 && unit.finalize != nullptr) unit.finalize();
  }
}

}  // namespace zentavo
