// Numbers as the library writes them: always with '.', whatever the locale. All functions may be
// called from any thread.
#pragma once

#include "zentavo/framework/text.h"

namespace zentavo {

// FormatFloat by the stock format settings.
ZENTAVO_API String xFrmFloat(StringView pattern, double value);
// Exactly `decimals` decimals, 0..18, rounded half away from zero; a number outside counts as the
// nearer end.
ZENTAVO_API String XFloatToStrDecs(double value, int decimals);
// The shortest text, as FloatToStr has it.
ZENTAVO_API String FloatToStrPoint(double value);

}  // namespace zentavo
