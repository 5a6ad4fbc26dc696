// Keys as most documents have them: internal to the JSON classes.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "zentavo/framework/text.h"
#include "zentavo/json/escapes.h"

namespace zentavo::json_internal {

// A short key has few units, all of which are written as they stand and none of which is a quote.
// Such keys lie where kMostOfShortKey units can be read, whatever is behind them.
inline constexpr std::size_t kMostOfShortKey = 16;

inline bool IsShortKey(StringView key) {
  return key.size() <= kMostOfShortKey && std::all_of(key.begin(), key.end(), [](char16_t unit) {
           return unit < kEscapeCount && kEscapes[unit].length == 1 && unit != u'\'';
         });
}

using EightUnits [[gnu::vector_size(16)]] = std::uint16_t;

inline EightUnits LoadEight(const char16_t* units) {
  EightUnits eight;
  std::memcpy(&eight, units, sizeof eight);
  return eight;
}

inline EightUnits LoadEight(const char* bytes) {
  using EightBytes [[gnu::vector_size(8)]] = std::uint8_t;
  EightBytes eight;
  std::memcpy(&eight, bytes, sizeof eight);
  return __builtin_convertvector(eight, EightUnits);
}

// Whether `text`, of which kMostOfShortKey units can be read, begins with the short key `key`.
template <typename Unit>
bool BeginsWithShortKey(const Unit* text, StringView key) {
  static constexpr auto kMasks = [] {
    std::array<char16_t, 2 * kMostOfShortKey> masks{};
    std::fill_n(masks.begin(), kMostOfShortKey, char16_t{0xFFFF});
    return masks;
  }();
  const char16_t* mask = kMasks.data() + kMostOfShortKey - key.size();
  const EightUnits differs =
      ((LoadEight(text) ^ LoadEight(key.data())) & LoadEight(mask)) |
      ((LoadEight(text + 8) ^ LoadEight(key.data() + 8)) & LoadEight(mask + 8));
  std::uint64_t halves[2];
  std::memcpy(halves, &differs, sizeof halves);
  return (halves[0] | halves[1]) == 0;
}

// Writes kMostOfShortKey units, those behind the key too. Returns the end of the key.
inline char16_t* WriteShortKey(char16_t* out, StringView key) {
  std::memcpy(out, key.data(), kMostOfShortKey * sizeof(char16_t));
  return out + key.size();
}

}  // namespace zentavo::json_internal
