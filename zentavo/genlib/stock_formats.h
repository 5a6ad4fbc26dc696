// The library's fixed format settings, the same on every machine.
#pragma once

#include "zentavo/framework/format_settings.h"

namespace zentavo {

// Number of stock sets; they are numbered from 0.
inline constexpr int kStockFormatCount = 3;

// Returns stock set `number`; a number that is none counts 0. All use '.' as the decimal separator
// and English names. Number 2 has the short date format "yyyy-mm-dd"; 0 and 1 have
// "dd/mm/yyyy" and "mm/dd/yyyy". May be called from any thread.
ZENTAVO_API const TFormatSettings& StockFormatSettings(int number = 0);

}  // namespace zentavo
