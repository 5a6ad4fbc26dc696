// Conversions of variants. Null (but for text), arrays and a text that does not convert raise
// EVariantTypeCastError "Could not convert variant of type (%s) into type (%s)"; a number out of
// range, and NaN as an integer, raise ERangeError "Range check error". Text converts with '.' as
// the decimal separator, whatever the locale.
#pragma once

#include <vector>

#include "zentavo/framework/variant.h"

namespace zentavo {

// The name of a kind in error texts: "Null", "String", "Integer", ...
ZENTAVO_API StringView VariantKindName(VariantKind kind);

// Null and Empty give the empty text, booleans "True"/"False", numbers FloatToStr or decimal
// digits (currency without zeros at the end), dates DateTimeToStr, by the thread's format settings;
// byte arrays their bytes in the system code page. Arrays of variants do not convert.
ZENTAVO_API String VarToStr(const Variant& value);
// The same, appended; what `value` holds is not copied first.
ZENTAVO_API void AppendVariant(String& out, const Variant& value);

// Empty counts 0, a boolean -1 or 0, a date its days. Integers are rounded, halves to even.
ZENTAVO_API double VarToDouble(const Variant& value);
ZENTAVO_API std::int32_t VarToInt32(const Variant& value);
ZENTAVO_API std::int64_t VarToInt64(const Variant& value);
// A number is true when it is not 0; a text by its spelling ("True", "False", in any case) or
// number.
ZENTAVO_API bool VarToBoolean(const Variant& value);
// A text converts as a date by the thread's format settings, else as a number.
ZENTAVO_API TDateTime VarToDateTime(const Variant& value);

ZENTAVO_API Variant VarArrayOf(std::vector<Variant> values);

}  // namespace zentavo
