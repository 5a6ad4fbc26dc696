// How texts and numbers are written: internal to the JSON classes.
#pragma once

#include <cstddef>
#include <cstdint>

#include "zentavo/framework/text.h"
#include "zentavo/json/slot.h"

namespace zentavo::json_internal {

inline constexpr std::size_t kUnitsOfUnit = 6;      // that one unit of a text becomes at most
inline constexpr std::size_t kUnitsOfInteger = 11;  // at most
inline constexpr std::size_t kUnitsOfDouble = 320;  // at most

// Each writes from `out` on, where there must be room for the most it may write and eight units
// more, and returns the end.

// A part of a quoted text; `before` is the unit before it.
char16_t* WriteEscaped(char16_t* out, StringView part, char16_t before);
char16_t* WriteInteger(char16_t* out, std::int32_t value);
// "######0.000000", always six decimals.
char16_t* WriteDouble(char16_t* out, double value);
// The same for a kDecimal slot.
char16_t* WriteDecimal(char16_t* out, const Slot& decimal);

}  // namespace zentavo::json_internal
