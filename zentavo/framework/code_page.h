// 8-bit text in the system code page, and in code pages by number.
//
// The system code page is the platform's (the ANSI code page on Windows, UTF-8 on Linux) unless the
// host sets another. All functions may be called from any thread.
#pragma once

#include "zentavo/framework/text.h"
#include "zentavo/platform/code_pages.h"

namespace zentavo {

using platform::CodePageFit;
using platform::LooseBytes;

ZENTAVO_API std::uint32_t SystemCodePage();
// Sets the code page for the whole process; 0 returns to the platform's. Raises EConvertError
// "Unknown code page %d".
ZENTAVO_API void SetSystemCodePage(std::uint32_t code_page);

// What has no counterpart becomes '?'; invalid bytes become U+FFFD.
ZENTAVO_API AnsiString ToSystemAnsi(StringView text);
ZENTAVO_API String FromSystemAnsi(std::string_view bytes);
// The same for a numbered code page, or with other answers to what does not fit. Raise
// EConvertError "Unknown code page %d".
ZENTAVO_API AnsiString ToCodePage(StringView text, std::uint32_t code_page,
                                  CodePageFit fit = CodePageFit::kExact);
ZENTAVO_API String FromCodePage(std::string_view bytes, std::uint32_t code_page,
                                LooseBytes loose = LooseBytes::kReplaced);
// Whether every character of `text` has a place of its own in the page, which no lone surrogate has
// but in UTF-7. Raises EConvertError "Unknown code page %d".
ZENTAVO_API bool FitsCodePage(StringView text, std::uint32_t code_page);

}  // namespace zentavo
