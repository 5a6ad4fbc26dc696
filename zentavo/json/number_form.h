// How numbers are written: internal to the JSON classes.
#pragma once

#include <cstddef>
#include <cstdint>

#include "zentavo/framework/digits.h"
#include "zentavo/json/slot.h"

namespace zentavo::json_internal {

inline constexpr std::size_t kUnitsOfDouble = 320;  // at most

// Each writes from `out` on, where kUnitsOfDouble units and eight more must have room, and returns
// the end.

// "######0.000000", always six decimals.
char16_t* WriteDouble(char16_t* out, double value);

inline char16_t* WriteInteger(char16_t* out, std::int32_t value) {
  *out = u'-';
  const bool negative = value < 0;
  const auto bits = static_cast<std::uint32_t>(value);
  return digits::WriteWhole(out + negative, negative ? 0 - bits : bits);
}

inline char16_t* WriteMillionths(char16_t* out, bool negative, std::uint64_t millionths) {
  constexpr std::uint64_t kMillion = 1000000;
  *out = u'-';
  out = digits::WriteWhole(out + (negative && millionths > 0), millionths / kMillion);
  *out = u'.';
  return digits::WriteSix(out + 1, static_cast<std::uint32_t>(millionths % kMillion));
}

// What a kDecimal slot stands for, as a double is written: at most 15 digits are a double's
// shortest decimal, which is what its text form is made of.
inline char16_t* WriteDecimal(char16_t* out, const Slot& decimal) {
  static constexpr std::array<std::uint64_t, 7> kScales{1000000, 100000, 10000, 1000, 100, 10, 1};
  constexpr std::uint64_t kMost = 1000000000000;
  const bool negative = decimal.digits < 0;
  const auto magnitude = static_cast<std::uint64_t>(negative ? -decimal.digits : decimal.digits);
  if (decimal.size >= kScales.size() || magnitude >= kMost) [[unlikely]] {
    return WriteDouble(out, decimal.DecimalValue());
  }
  return WriteMillionths(out, negative, magnitude * kScales[decimal.size]);
}

}  // namespace zentavo::json_internal
