// Header lines as text: "Name: value" each, ended by CR LF.
#pragma once

#include <optional>

#include "zentavo/framework/text.h"

namespace zentavo {

// Whether `text` is one well-formed header line without its end: a name of token characters, a
// colon, a value without control characters. A line break anywhere makes it none.
bool IsHeaderLine(StringView text);
// Whether `text` is empty or lines that are; the last may lack its end.
bool AreHeaderLines(StringView text);
// Whether `text` can be a verb.
bool IsToken(StringView text);

// The value of the first header `name` of `lines`, without regard to case; nothing when it has
// none.
std::optional<StringView> FindHeader(StringView lines, StringView name);
// `lines` without the headers `names`.
String WithoutHeaders(StringView lines, std::initializer_list<StringView> names);

// The parameter `name` of a header value such as "text/plain; charset=utf-8", without its quotes;
// empty when there is none.
StringView HeaderParameter(StringView value, StringView name);

// The name of a header by WinHTTP's number, such as 1 for Content-Type; empty for a number that
// stands for none.
StringView HeaderName(std::int32_t id);

}  // namespace zentavo
