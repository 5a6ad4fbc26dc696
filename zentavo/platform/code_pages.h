// Conversion between UTF-16 and 8-bit code pages, named by their Windows numbers (1253, 737,
// 65001).
//
// A character without a counterpart becomes '?', one for each of its units (so a surrogate pair
// becomes "??"). In UTF-8 (65001) a lone surrogate becomes U+FFFD; UTF-7 (65000) carries it. The
// single-byte pages that Windows documents have the same bytes on every platform; which bytes the
// others have is the platform's word. All functions may be called from any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "zentavo/platform/export.h"

namespace zentavo::platform {

inline constexpr std::uint32_t kCodePageUtf8 = 65001;

// Whether a character without a place of its own may take another's.
enum class CodePageFit {
  kExact,
  kBest,  // the nearest one that the page documents: in 1252 U+0100 becomes 'A'
};

// What becomes of bytes that stand for no character.
enum class LooseBytes {
  kReplaced,  // U+FFFD
  kKept,      // what the page documents for them, mostly a unit for private use that encodes to the
              // same byte again; U+FFFD where it documents nothing
};

// The platform's own 8-bit code page: the ANSI code page on Windows, UTF-8 on Linux.
ZENTAVO_API std::uint32_t DefaultCodePage();

// Returns whether the platform converts `code_page`.
ZENTAVO_API bool CodePageKnown(std::uint32_t code_page);

// Return the converted text, or nothing when the platform does not know `code_page`.
ZENTAVO_API std::optional<std::string> EncodeCodePage(std::u16string_view text,
                                                      std::uint32_t code_page,
                                                      CodePageFit fit = CodePageFit::kExact);
ZENTAVO_API std::optional<std::u16string> DecodeCodePage(std::string_view bytes,
                                                         std::uint32_t code_page,
                                                         LooseBytes loose = LooseBytes::kReplaced);

// Returns whether every character of `text` has a place of its own in `code_page`, which no lone
// surrogate has but in UTF-7; nothing when the platform does not know `code_page`.
ZENTAVO_API std::optional<bool> FitsCodePage(std::u16string_view text, std::uint32_t code_page);

}  // namespace zentavo::platform
