// Numbers out of texts that users typed, and out of field values.
//
// A number has either '.' or the thread's decimal separator before its decimals. All functions may
// be called from any thread.
#pragma once

#include "zentavo/framework/text.h"
#include "zentavo/framework/variant.h"

namespace zentavo {

// Blanks around the number are skipped and a blank text is 0. Raises EConvertError "'%s' is not a
// valid floating point value".
ZENTAVO_API double LcStrToFloat(StringView text);
// The same, with 0 for what is no number.
ZENTAVO_API double XSafeStrToFloat(StringView text);
// The number that the text begins with, blanks before it skipped, 0 when it begins with none:
// "12.5 kg" is 12.5.
ZENTAVO_API double SafeVal(StringView text);

// Null and Empty count 0, texts as LcStrToFloat reads them, all others as variants convert. Raises
// what these raise.
ZENTAVO_API double VarToFloat(const Variant& value);
// The same, with 0 for what does not convert.
ZENTAVO_API double PrtVarToFloat(const Variant& value);

}  // namespace zentavo
