#include "zentavo/genlib/stock_formats.h"

#include <array>

namespace zentavo {
namespace {

using StockSets = std::array<TFormatSettings, kStockFormatCount>;

TFormatSettings WithDateFormat(StringView format, char16_t separator) {
  TFormatSettings settings;
  settings.ShortDateFormat = format;
  settings.DateSeparator = separator;
  return settings;
}

}  // namespace

const TFormatSettings& StockFormatSettings(int number) {
  // Never destroyed: destructors of other static objects still format text.
  static const StockSets* const sets =
      new StockSets{WithDateFormat(u"dd/mm/yyyy", u'/'), WithDateFormat(u"mm/dd/yyyy", u'/'),
                    WithDateFormat(u"yyyy-mm-dd", u'-')};
  const bool known = number >= 0 && number < kStockFormatCount;
  return (*sets)[static_cast<std::size_t>(known ? number : 0)];
}

}  // namespace zentavo
