// Steps over the text of a format pattern.
#pragma once

#include <cstddef>

#include "zentavo/framework/text.h"

namespace zentavo::pattern_scan {

// Takes up to `count` units off the front of `rest`.
inline StringView TakeUnits(StringView& rest, std::size_t count) {
  const StringView taken = rest.substr(0, count);
  rest.remove_prefix(taken.size());
  return taken;
}

// Takes a quoted text and its quotes, the last of which may be missing, and returns what they hold.
// `rest` begins with the quote.
inline StringView TakeQuoted(StringView& rest) {
  const char16_t quote = TakeUnits(rest, 1)[0];
  const StringView text = TakeUnits(rest, rest.find(quote));
  TakeUnits(rest, 1);
  return text;
}

}  // namespace zentavo::pattern_scan
