// UTF-16 text in printable ASCII: every unit outside 0x20..0x7E, and the backslash, as \uXXXX.
#pragma once

#include "zentavo/framework/text.h"

namespace zentavo::tool {

String EscapedText(StringView text);

// Raises UsageError when a backslash is not the start of "\uXXXX".
String UnescapedText(StringView text);

}  // namespace zentavo::tool
