// Text for output of a fixed width, and text behind edit masks.
//
// All functions may be called from any thread.
#pragma once

#include <cstdint>

#include "zentavo/framework/text.h"

namespace zentavo {

// Returns the next line, trimmed, of at most `MaxLength` units of `Text` from `Position` on, and
// moves `Position` behind it and behind the separator: the line ends at its first carriage return,
// else at its last blank or carriage return, else after `MaxLength` units. A text that still has a
// blank breaks there even when all of it would fit, which callers rely on. The empty text at a
// position behind the end. Raises EZentavoError "Line length must be at least 1, not %d".
//
//   while (position <= static_cast<std::int32_t>(text.size())) {
//     lines.Add(ExtractProtasis(text, 40, position));
//   }
ZENTAVO_API String ExtractProtasis(StringView Text, std::int32_t MaxLength, std::int32_t& Position);

// `Text` without the blanks at its end, and without the mask literals ! # $ & + - . / @ \ ^ there
// that `Mask` has at the same position: "12/03/  " behind "99/99/99" gives "12/03".
ZENTAVO_API String TrimLiteral(StringView Text, StringView Mask);

}  // namespace zentavo
