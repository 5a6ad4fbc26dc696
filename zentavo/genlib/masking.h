// Masking of short texts into printable characters and back, and a hash of texts.
//
// A masked text is '#', one character for the start position (64 + 1..32), then the text's bits in
// units of six, least significant first, each written as the character 64 + value. It hides a text
// from casual eyes; it is no encryption.
//
//   AnsiString masked = EncodeStr("abc");   // 6 characters, different from call to call
//   DecodeStr(masked);                      // "abc"
//
// All functions may be called from any thread.
#pragma once

#include <cstdint>
#include <string_view>

#include "zentavo/framework/text.h"

namespace zentavo {

inline constexpr int kMaskPositions = 32;

// Returns `Text`, any bytes, masked from a random start position; the empty text stays empty.
// Result length: 2 + ceil(Text.size() * 8 / 6) bytes, all in 0x23..0x7F.
ZENTAVO_API AnsiString EncodeStr(std::string_view Text);
// The same from the start position `Start`, 1..kMaskPositions. Raises EZentavoError "Mask position
// %d is not in 1..32".
ZENTAVO_API AnsiString EncodeStr(std::string_view Text, int Start);

// Returns the text that EncodeStr masked. A text that does not begin with '#' comes back unchanged.
// Trailing bits that do not fill a byte are dropped, and of each character but the first two only
// the low six bits of its distance from 64 count. Raises what EncodeStr raises for a start position
// that is none, or is missing (which counts as 0).
ZENTAVO_API AnsiString DecodeStr(std::string_view Text);

// The sum of the units times 37 to the power of their positions from 0, in wrapping 32-bit
// arithmetic; 0 for the empty text.
ZENTAVO_API std::int32_t HashForString(StringView Text);

}  // namespace zentavo
