// Separated texts whose quotes hide separators.
#pragma once

#include <vector>

#include "zentavo/framework/text.h"

namespace zentavo {

// The trimmed pieces of a text, by the rules of ExtractQuoteStings. The views are of the text.
std::vector<StringView> QuotedPieces(StringView text, char16_t separator, char16_t open_quote,
                                     char16_t close_quote);

}  // namespace zentavo
