// Simple case mapping: one UTF-16 unit in, one unit out, all scripts of the Basic Multilingual
// Plane. A unit without a counterpart, and each surrogate, maps to itself.
//
// All functions may be called from any thread.
#pragma once

#include <span>

#include "zentavo/platform/export.h"

namespace zentavo::platform {

// Replaces each unit by its simple upper-case or lower-case mapping.
ZENTAVO_API void UpperCaseUnits(std::span<char16_t> units);
ZENTAVO_API void LowerCaseUnits(std::span<char16_t> units);

}  // namespace zentavo::platform
