// Decimal digits of whole numbers, three at a time.
//
// Each function writes from `out` on and returns the end. It may write one unit beyond that, which
// must have room.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace zentavo::digits {

// "000" to "999", each four units behind the one before.
extern const std::array<char16_t, 4002> kThrees;

// Three digits less `zeros` at their beginning.
inline char16_t* WriteThree(char16_t* out, std::uint32_t below_1000, std::size_t zeros = 0) {
  std::memcpy(out, &kThrees[std::size_t{below_1000} * 4 + zeros], 4 * sizeof(char16_t));
  return out + 3 - zeros;
}

inline char16_t* WriteSix(char16_t* out, std::uint32_t below_million) {
  return WriteThree(WriteThree(out, below_million / 1000), below_million % 1000);
}

// Without zeros at the beginning, as WriteWhole.
inline char16_t* WriteFirst(char16_t* out, std::uint32_t below_1000) {
  const auto zeros = static_cast<std::size_t>((below_1000 < 100) + (below_1000 < 10));
  return WriteThree(out, below_1000, zeros);
}

// Of a million or more.
char16_t* WriteLarge(char16_t* out, std::uint64_t value);

// At most 20 digits.
inline char16_t* WriteWhole(char16_t* out, std::uint64_t value) {
  if (value >= 1000000) return WriteLarge(out, value);
  const auto small = static_cast<std::uint32_t>(value);
  if (small < 1000) return WriteFirst(out, small);
  return WriteThree(WriteFirst(out, small / 1000), small % 1000);
}

}  // namespace zentavo::digits
