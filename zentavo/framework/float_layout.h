// The layouts that the number writers share: digits in, units out.
#pragma once

#include <string_view>

#include "zentavo/framework/decimal_digits.h"
#include "zentavo/framework/text.h"

namespace zentavo::float_layout {

// INF, -INF or NAN; `value` must be one of them.
std::string_view NonFiniteName(double value);

void AppendAscii(String& out, std::string_view text);
void AppendAscii(AnsiString& out, std::string_view text);

// At most `significant` (1..18) digits: fixed, or scientific (1.5E-7) with more than `significant`
// digits before the point or a magnitude below 0.00001.
void AppendGeneral(String& out, DecimalDigits digits, int significant, char16_t separator);
void AppendGeneral(AnsiString& out, DecimalDigits digits, int significant, char separator);

// Exactly `significant` digits (1 or more), one of them before the separator, and a signed exponent
// of at least three digits: 1.50E+003.
void AppendScientific(String& out, DecimalDigits digits, int significant, char16_t separator);

// `decimals` digits behind the separator. A `separator` of 0 is left out, a `thousand_separator` of
// 0 groups nothing.
void AppendFixed(String& out, DecimalDigits digits, int decimals, char16_t separator,
                 char16_t thousand_separator);

}  // namespace zentavo::float_layout
