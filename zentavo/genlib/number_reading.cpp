#include "zentavo/genlib/number_reading.h"

#include <optional>

#include "zentavo/framework/exception.h"
#include "zentavo/framework/format_settings.h"
#include "zentavo/framework/number_text.h"
#include "zentavo/framework/variant_convert.h"

namespace zentavo {

namespace {

std::optional<double> TryRead(StringView text) {
  const std::optional<double> value = TryStrToFloat(text, u'.');
  const char16_t separator = FormatSettings().DecimalSeparator;
  return value || separator == u'.' ? value : TryStrToFloat(text, separator);
}

std::size_t SkipDigits(StringView text, std::size_t at) {
  while (at < text.size() && IsDigit(text[at])) ++at;
  return at;
}

bool IsUnitAt(StringView text, std::size_t at, StringView units) {
  return at < text.size() && units.find(text[at]) != StringView::npos;
}

// How long the number at the start of `text` is: a sign, digits, decimals, an exponent. What
// cannot be read without digits behind it does not belong to it.
std::size_t NumberLength(StringView text) {
  const char16_t separators[] = {u'.', FormatSettings().DecimalSeparator};
  std::size_t end = SkipDigits(text, IsUnitAt(text, 0, u"+-") ? 1 : 0);
  if (IsUnitAt(text, end, {separators, 2}) && SkipDigits(text, end + 1) > end + 1) {
    end = SkipDigits(text, end + 1);
  }
  if (IsUnitAt(text, end, u"eE")) {
    const std::size_t digits = end + (IsUnitAt(text, end + 1, u"+-") ? 2 : 1);
    if (SkipDigits(text, digits) > digits) end = SkipDigits(text, digits);
  }
  return end;
}

}  // namespace

double LcStrToFloat(StringView text) {
  if (const auto value = TryRead(text)) return *value;
  if (TrimView(text).empty()) return 0;
  RaiseNotFloat(text);
}

double XSafeStrToFloat(StringView text) {
  return TryRead(text).value_or(0);
}

double SafeVal(StringView text) {
  const StringView trimmed = TrimLeftView(text);
  return XSafeStrToFloat(trimmed.substr(0, NumberLength(trimmed)));
}

double VarToFloat(const Variant& value) {
  if (value.IsNull() || value.IsEmpty()) return 0;
  return value.IsString() ? LcStrToFloat(value.StringValue()) : VarToDouble(value);
}

double PrtVarToFloat(const Variant& value) {
  try {
    return VarToFloat(value);
  } catch (const Exception&) {
    return 0;
  }
}

}  // namespace zentavo
