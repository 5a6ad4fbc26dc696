// Copies what strings are mostly made of: internal to the JSON classes.
#pragma once

#include "zentavo/framework/text.h"

namespace zentavo::json_internal {

template <typename Unit>
struct Copied {
  const Unit* from;  // where copying ended
  char16_t* to;
};

// Copies the text from `here` on in UTF-16: up to `quote`, a backslash, a line feed or a carriage
// return, or to where `end` or `limit` leaves no room; from UTF-8 also to a sequence that is not
// one of two bytes.
Copied<char16_t> CopyPlain(const char16_t* here, const char16_t* end, char16_t quote, char16_t* out,
                           const char16_t* limit);
Copied<char> CopyPlain(const char* here, const char* end, char16_t quote, char16_t* out,
                       const char16_t* limit);

}  // namespace zentavo::json_internal
