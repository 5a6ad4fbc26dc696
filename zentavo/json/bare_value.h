// What a value without quotes is: internal to the JSON classes.
#pragma once

#include "zentavo/framework/text.h"
#include "zentavo/json/storage.h"

namespace zentavo::json_internal {

// Whether a bare value ends before this unit.
bool EndsBare(char16_t unit);

// The plain spellings, quickly: short integers and decimals, true, false and null, right before
// what ends a bare value. Returns where the value ends; null for all other values.
const char16_t* ReadPlainValue(const char16_t* here, const char16_t* end, Slot& slot);

// A number, a boolean or null; an empty kText slot when `bare` is a text. `bare` is not empty.
Slot ReadBareValue(StringView bare);

}  // namespace zentavo::json_internal
