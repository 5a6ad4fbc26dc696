// Numbers read from text that users typed.
#pragma once

#include "zentavo/framework/text.h"

namespace zentavo {

// Reads a number with either '.' or the thread's decimal separator before its decimals; blanks
// around it are skipped and a blank text is 0. Raises EConvertError "'%s' is not a valid floating
// point value". May be called from any thread.
ZENTAVO_API double LcStrToFloat(StringView text);

}  // namespace zentavo
