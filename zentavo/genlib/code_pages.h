// 8-bit text in code pages: conversion, and the question whether a text fits.
//
//   Utf8ToCodePage("Αθήνα", 1253);       // the five bytes of that page
//   AnsiToUnicode("\xC1\xE8 ", 1253);    // u"Αθ"
//   NotInCodePage(u"Αθήνα", 1252);       // true
//
// The code page 0 is the system's. All functions may be called from any thread; those that take a
// code page raise EConvertError "Unknown code page %d" with its number.
#pragma once

#include <cstdint>
#include <string_view>

#include "zentavo/framework/text.h"

namespace zentavo {

// The default ANSI code page of a Windows locale identifier (1253 for 0x0408, Greek). 0 for
// languages that have none, and for what is no locale identifier. 0x0000, 0x0400 and 0x0800 stand
// for the user's locale.
ZENTAVO_API std::int32_t GetCodePageFromLocale(std::uint32_t Locale);

// Returns `Text` without the bytes 0..32 at its ends, as UTF-16. Bytes that stand for no character
// give what the page documents for them, mostly a unit for private use.
//
// The result has as many units as the trimmed text has bytes, which callers rely on: where
// characters take several bytes, units 0 fill it up.
ZENTAVO_API String AnsiToUnicode(std::string_view Text, std::uint32_t CodePage);

// Returns UTF-8 text in the bytes of a code page. A character without a place takes the nearest one
// that the page documents, or becomes '?' for each of its units.
//
// The result has as many bytes as the text has UTF-16 units, which callers rely on: it holds the
// characters that fit whole, and bytes 0 fill it up.
ZENTAVO_API AnsiString Utf8ToCodePage(std::string_view Utf8Text, std::int32_t CodePage);

// Whether at least one character of `Text` has no place of its own in the code page. A lone
// surrogate has one in UTF-7 only.
ZENTAVO_API bool NotInCodePage(StringView Text, std::int32_t CodePage);

}  // namespace zentavo
