// Decimal numbers as text: a sign, digits and '.' among them, without an exponent.
#pragma once

#include "zentavo/framework/variant.h"

namespace zentavo {

// The number that `value` holds, with all its digits: a double's shortest ones, a text's own.
// Raises EVariantTypeCastError for a text that is no such number, else what VarToStr raises;
// ERangeError "Range check error" for NaN and infinities.
ZENTAVO_API String VarToDecimalText(const Variant& value);

}  // namespace zentavo
