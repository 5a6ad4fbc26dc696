// A code page of one byte a character, as tables for both directions.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "zentavo/platform/code_pages.h"

namespace zentavo::platform {

// A character that takes another one's place.
struct BestFit {
  char16_t unit;
  std::uint8_t byte;
};

// Immutable, so that threads share it.
class SingleBytePage {
 public:
  // The unit of each byte, U+FFFD for none; of two bytes with one unit the unit encodes to the
  // lower. A unit with a byte of its own ignores its best fit.
  using Units = std::array<char16_t, 256>;
  SingleBytePage(const Units& units, std::span<const BestFit> best_fits);

  std::string Encode(std::u16string_view text, CodePageFit fit) const;
  std::u16string Decode(std::string_view bytes, LooseBytes loose) const;
  bool Fits(std::u16string_view text) const;

 private:
  // A byte and whether it is the unit's own; a best fit otherwise, or '?'.
  using Place = std::uint16_t;
  static constexpr Place kOwn = 0x100;
  using Block = std::array<Place, 256>;  // by the low byte of the unit

  Place PlaceOf(char16_t unit) const { return blocks_[block_of_[unit >> 8]][unit & 0xFF]; }
  void SetPlace(char16_t unit, Place place);

  Units units_;                               // with the units for private use
  Units replaced_units_;                      // without them
  std::array<std::uint8_t, 256> block_of_{};  // by the high byte of the unit
  std::vector<Block> blocks_;                 // the first one has no places
};

}  // namespace zentavo::platform
