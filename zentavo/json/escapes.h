// How the units of texts are written: internal to the JSON classes.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "zentavo/framework/text.h"

namespace zentavo::json_internal {

inline constexpr std::size_t kUnitsOfUnit = 6;  // that one unit of a text becomes at most

// What a unit becomes. Copied whole, so that no branch depends on its length.
struct alignas(16) Escape {
  std::array<char16_t, 7> text;
  char16_t length;
};

// For the units that UTF-8 writes in one or two bytes: the alphabets from Latin to Arabic.
inline constexpr std::size_t kEscapeCount = 0x800;
extern const std::array<Escape, kEscapeCount> kEscapes;

// Whether the table tells all about a unit; '<' takes the '/' behind it along.
inline bool IsEasy(char16_t unit) {
  return unit < kEscapeCount && unit != u'<';
}

inline bool AreEasyEight(const char16_t* here) {
  using Units [[gnu::vector_size(16)]] = std::uint16_t;
  static_assert(kEscapeCount == 1 << 11);
  Units units;
  std::memcpy(&units, here, sizeof units);
  constexpr std::uint16_t kLess = u'<';  // not every compiler compares with a char16_t
  const Units hard = (units >> 11) | static_cast<Units>(units == kLess);
  std::uint64_t halves[2];
  std::memcpy(halves, &hard, sizeof halves);
  return (halves[0] | halves[1]) == 0;
}

inline bool AreEasyFour(const char16_t* here) {
  constexpr std::uint64_t kOnes = 0x0001000100010001;
  std::uint64_t units;
  std::memcpy(&units, here, sizeof units);
  const std::uint64_t less = units ^ kOnes * u'<';  // zero where there is one
  return ((units & kOnes * 0xF800) | ((less - kOnes) & ~less & kOnes * 0x8000)) == 0;
}

inline char16_t* WriteEasy(char16_t* out, char16_t unit) {
  const Escape& escape = kEscapes[unit];
  std::memcpy(out, &escape, sizeof escape);
  return out + escape.length;
}

template <int kCount>
char16_t* WriteEasy(char16_t* out, const char16_t* here) {
  for (int index = 0; index < kCount; ++index) out = WriteEasy(out, here[index]);
  return out;
}

struct Written {
  const char16_t* here;  // what comes next
  char16_t* out;
};

// Writes a unit that is not easy, and with '<' the '/' behind it.
Written WriteHard(char16_t* out, const char16_t* here, const char16_t* end);

inline Written WriteUnit(char16_t* out, const char16_t* here, const char16_t* end) {
  if (!IsEasy(*here)) [[unlikely]] {
    return WriteHard(out, here, end);
  }
  return {here + 1, WriteEasy(out, *here)};
}

// Writes the inside of a quoted text from `out` on, where kUnitsOfUnit units for each of its units
// and eight more must have room. Returns the end.
inline char16_t* WriteEscaped(char16_t* out, StringView text) {
  const char16_t* here = text.data();
  const char16_t* end = here + text.size();
  while (end - here >= 8) {
    if (AreEasyEight(here)) [[likely]] {
      out = WriteEasy<8>(out, here);
      here += 8;
    } else {
      const Written written = WriteUnit(out, here, end);
      here = written.here;
      out = written.out;
    }
  }
  if (end - here >= 4 && AreEasyFour(here)) {
    out = WriteEasy<4>(out, here);
    here += 4;
  }
  while (here != end) {
    const Written written = WriteUnit(out, here, end);
    here = written.here;
    out = written.out;
  }
  return out;
}

}  // namespace zentavo::json_internal
