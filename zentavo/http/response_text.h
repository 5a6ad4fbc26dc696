// The text of an answer.
#pragma once

#include "zentavo/framework/text.h"

namespace zentavo {

// `bytes` as the character set of `content_type` says: utf-7, utf-16 (little end first), a windows-
// code page that is known; else UTF-8. Invalid bytes become U+FFFD.
String ResponseText(std::string_view bytes, StringView content_type);

}  // namespace zentavo
