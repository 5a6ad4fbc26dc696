// The package frame: the once-only start-up and shut-down of the library's units.
//
// The shared library runs LoadPackage when it is loaded and UnloadPackage when it is unloaded. A
// host that links the library statically calls the two itself, around all other use.
#pragma once

#include <cstdint>
#include <span>

#include "zentavo/framework/text.h"

namespace zentavo {

// One unit of the library. Its counter makes a second initialisation a no-op: it runs when the
// counter moves from 0 to -1, and the finalisation undoes it when the counter returns to 0.
struct PackageUnit {
  const char* name;
  void (*initialize)();  // null where the unit needs none
  void (*finalize)();
  std::int32_t counter = 0;
};

// Initialise the units in their order, finalise them in reverse order. A unit whose initialisation
// raises is not counted, and neither are those behind it. Not to be called from several threads at
// once.
ZENTAVO_API void InitializeUnits(std::span<PackageUnit> units);
ZENTAVO_API void FinalizeUnits(std::span<PackageUnit> units);

// The same for the units of this library, which stand in dependency order.
ZENTAVO_API void LoadPackage();
ZENTAVO_API void UnloadPackage();
ZENTAVO_API std::span<const PackageUnit> PackageUnits();

}  // namespace zentavo
