// How numbers are written: internal to the JSON classes.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "zentavo/framework/text.h"
#include "zentavo/json/slot.h"

namespace zentavo::json_internal {

inline constexpr std::size_t kUnitsOfDouble = 320;  // at most

// Each writes from `out` on, where kUnitsOfDouble units and eight more must have room, and returns
// the end.

// "######0.000000", always six decimals.
char16_t* WriteDouble(char16_t* out, double value);
char16_t* WriteManyDigits(char16_t* out, std::uint64_t value);

// Three digits for each number below 1000, each four units behind the one before.
extern const std::array<char16_t, 4002> kThrees;

// Writes three digits less `zeros` at their beginning; may write a unit more.
inline char16_t* WriteThree(char16_t* out, std::uint32_t below_1000, std::size_t zeros = 0) {
  std::memcpy(out, &kThrees[std::size_t{below_1000} * 4 + zeros], 4 * sizeof(char16_t));
  return out + 3 - zeros;
}

inline char16_t* WriteSix(char16_t* out, std::uint32_t below_million) {
  return WriteThree(WriteThree(out, below_million / 1000), below_million % 1000);
}

inline char16_t* WriteFirst(char16_t* out, std::uint32_t below_1000) {
  const auto zeros = static_cast<std::size_t>((below_1000 < 100) + (below_1000 < 10));
  return WriteThree(out, below_1000, zeros);
}

inline char16_t* WriteWhole(char16_t* out, std::uint64_t value) {
  if (value >= 1000000) return WriteManyDigits(out, value);
  const auto small = static_cast<std::uint32_t>(value);
  if (small < 1000) return WriteFirst(out, small);
  return WriteThree(WriteFirst(out, small / 1000), small % 1000);
}

inline char16_t* WriteInteger(char16_t* out, std::int32_t value) {
  *out = u'-';
  const bool negative = value < 0;
  const auto bits = static_cast<std::uint32_t>(value);
  return WriteWhole(out + negative, negative ? 0 - bits : bits);
}

inline char16_t* WriteMillionths(char16_t* out, bool negative, std::uint64_t millionths) {
  constexpr std::uint64_t kMillion = 1000000;
  *out = u'-';
  out = WriteWhole(out + (negative && millionths > 0), millionths / kMillion);
  *out = u'.';
  return WriteSix(out + 1, static_cast<std::uint32_t>(millionths % kMillion));
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
