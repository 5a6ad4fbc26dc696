#include "zentavo/genlib/number_reading.h"

#include "zentavo/framework/format_settings.h"
#include "zentavo/framework/number_text.h"

namespace zentavo {

double LcStrToFloat(StringView text) {
  if (const auto value = TryStrToFloat(text, u'.')) return *value;
  const char16_t separator = FormatSettings().DecimalSeparator;
  if (separator != u'.') {
    if (const auto value = TryStrToFloat(text, separator)) return *value;
  }
  if (TrimView(text).empty()) return 0;
  RaiseNotFloat(text);
}

}  // namespace zentavo
