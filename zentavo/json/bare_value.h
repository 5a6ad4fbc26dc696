// What a value without quotes is: internal to the JSON classes.
#pragma once

#include <array>

#include "zentavo/framework/text.h"
#include "zentavo/json/slot.h"

namespace zentavo::json_internal {

inline constexpr std::array<bool, 128> kEndsBare = [] {
  std::array<bool, 128> ends{};
  for (std::size_t unit = 0; unit < u' '; ++unit) ends[unit] = true;
  for (const char16_t unit : StringView(u",:]}/\\\"[{;=#")) ends[unit] = true;
  return ends;
}();

// Whether a bare value ends before this unit.
template <typename Unit>
bool EndsBare(Unit unit) {
  const auto code = static_cast<char32_t>(unit);
  return code < kEndsBare.size() && kEndsBare[code];
}

// A number, a boolean or null; a kText slot of `bare` when it is a text. `bare` is not empty.
Slot ReadBareValue(StringView bare);

}  // namespace zentavo::json_internal
