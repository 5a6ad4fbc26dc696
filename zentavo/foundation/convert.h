// Variants as 8-bit text.
#pragma once

#include "zentavo/framework/variant.h"

namespace zentavo {

// Returns the value's text in the system code page; the empty text for Null. Raises what VarToStr
// raises. May be called from any thread.
ZENTAVO_API AnsiString VarToAnsiStr(const Variant& V);

}  // namespace zentavo
