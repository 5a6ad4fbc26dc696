// What a value without quotes is: internal to the JSON classes.
#pragma once

#include "zentavo/framework/text.h"
#include "zentavo/json/slot.h"

namespace zentavo::json_internal {

// Whether a bare value ends before this unit.
bool EndsBare(char16_t unit);
inline bool EndsBare(char unit) {
  return EndsBare(static_cast<char16_t>(static_cast<unsigned char>(unit)));
}

// The plain spellings, quickly: short integers and decimals, true, false and null, right before
// what ends a bare value. Returns where the value ends; null for all other values. `here` is not
// the end.
template <typename Unit>
const Unit* ReadPlainValue(const Unit* here, const Unit* end, Slot* slot);
extern template const char16_t* ReadPlainValue(const char16_t*, const char16_t*, Slot*);
extern template const char* ReadPlainValue(const char*, const char*, Slot*);

// A number, a boolean or null; a kText slot of `bare` when it is a text. `bare` is not empty.
Slot ReadBareValue(StringView bare);

}  // namespace zentavo::json_internal
