#include "zentavo/platform/case_mapping.h"

#include <unicode/uchar.h>

namespace zentavo::platform {

namespace {

// A mapping that leaves the Basic Multilingual Plane does not fit in one unit.
char16_t OneUnit(char16_t unit, UChar32 mapped) {
  return mapped <= 0xFFFF ? static_cast<char16_t>(mapped) : unit;
}

}  // namespace

void UpperCaseUnits(std::span<char16_t> units) {
  for (char16_t& unit : units) unit = OneUnit(unit, u_toupper(unit));
}

void LowerCaseUnits(std::span<char16_t> units) {
  for (char16_t& unit : units) unit = OneUnit(unit, u_tolower(unit));
}

}  // namespace zentavo::platform
