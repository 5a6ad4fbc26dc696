#include "zentavo/genlib/number_writing.h"

#include "zentavo/framework/number_text.h"
#include "zentavo/genlib/stock_formats.h"

namespace zentavo {

String xFrmFloat(StringView pattern, double value) {
  return FormatFloat(pattern, value, StockFormatSettings());
}

String XFloatToStrDecs(double value, int decimals) {
  return FloatToFixed(value, decimals, Grouping::kNone, u'.', u',');
}

String FloatToStrPoint(double value) {
  return FloatToStr(value, StockFormatSettings());
}

}  // namespace zentavo
