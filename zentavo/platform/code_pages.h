// Conversion between UTF-16 and 8-bit code pages, named by their Windows numbers (1253, 737,
// 65001).
//
// Each unit of a character without a counterpart becomes '?' (so a surrogate pair becomes "??");
// invalid bytes become U+FFFD. Nothing is best-fitted. In the Unicode forms (65000, 65001) a lone
// surrogate becomes U+FFFD. Which bytes a code page has is the platform's word. All functions may
// be called from any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "zentavo/platform/export.h"

namespace zentavo::platform {

inline constexpr std::uint32_t kCodePageUtf8 = 65001;

// The platform's own 8-bit code page: the ANSI code page on Windows, UTF-8 on Linux.
ZENTAVO_API std::uint32_t DefaultCodePage();

// Returns whether the platform converts `code_page`.
ZENTAVO_API bool CodePageKnown(std::uint32_t code_page);

// Return the converted text, or nothing when the platform does not know `code_page`.
ZENTAVO_API std::optional<std::string> EncodeCodePage(std::u16string_view text,
                                                      std::uint32_t code_page);
ZENTAVO_API std::optional<std::u16string> DecodeCodePage(std::string_view bytes,
                                                         std::uint32_t code_page);

}  // namespace zentavo::platform
