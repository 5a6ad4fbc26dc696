// What a single-byte code page does, in a form that can be recorded on one platform and compared on
// another.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "zentavo/platform/code_pages.h"

namespace zentavo::testing {

// Recorded on Windows; U+FFFD stands for a byte without a character.
struct RecordedPage {
  std::uint32_t code_page;
  std::u16string_view upper;  // the units of the bytes 0x80..0xFF; those below are ASCII
  std::uint32_t exact_hash;   // over the bytes of all units, each with a place of its own
  std::uint32_t best_hash;    // the same with the places of others
};

inline std::string AllBytes() {
  std::string bytes(256, '\0');
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>(i);
  return bytes;
}

inline std::u16string AllUnits() {
  std::u16string units(0x10000, u'\0');
  for (std::size_t i = 0; i < units.size(); ++i) units[i] = static_cast<char16_t>(i);
  return units;
}

// FNV-1a.
inline std::uint32_t HashOf(std::string_view bytes) {
  std::uint32_t hash = 2166136261U;
  for (const char byte : bytes) hash = (hash ^ static_cast<unsigned char>(byte)) * 16777619U;
  return hash;
}

}  // namespace zentavo::testing
