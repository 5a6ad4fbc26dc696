// What a single-byte code page does, in a form that can be recorded on one platform and compared on
// another.
#pragma once

#include <cstdint>
#include <iomanip>
#include <sstream>
#include <string>
#include <string_view>

#include "zentavo/platform/code_pages.h"

namespace zentavo::testing {

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

// The page's number, then in hexadecimal digits the hash over the bytes of all units, each in a
// place of its own, the same with the places of others, and the units of the bytes 0x80..0xFF.
inline std::string RecordOf(std::uint32_t page) {
  const auto hash_of_all = [page](platform::CodePageFit fit) {
    return HashOf(platform::EncodeCodePage(AllUnits(), page, fit).value());
  };
  const std::u16string units =
      platform::DecodeCodePage(AllBytes(), page, platform::LooseBytes::kKept).value();
  std::ostringstream record;
  record << page << std::hex << std::uppercase << std::setfill('0') << ' ' << std::setw(8)
         << hash_of_all(platform::CodePageFit::kExact) << ' ' << std::setw(8)
         << hash_of_all(platform::CodePageFit::kBest);
  for (std::size_t i = 128; i < 256; ++i) record << ' ' << std::setw(4) << +units.at(i);
  return record.str();
}

}  // namespace zentavo::testing
