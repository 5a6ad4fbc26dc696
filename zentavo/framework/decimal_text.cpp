#include "zentavo/framework/decimal_text.h"

#include <array>
#include <charconv>
#include <cmath>

#include "zentavo/framework/exception.h"
#include "zentavo/framework/number_text.h"
#include "zentavo/framework/variant_convert.h"

namespace zentavo {

namespace {

constexpr std::size_t kLongestDouble = 400;  // units, written without an exponent

String DoubleText(double value) {
  if (!std::isfinite(value)) throw ERangeError(u"Range check error");
  std::array<char, kLongestDouble> text;
  const char* const end =
      std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed).ptr;
  return {static_cast<const char*>(text.data()), end};
}

String CurrencyText(std::int64_t units) {
  constexpr std::uint64_t kUnits = 10000;
  const auto bits = static_cast<std::uint64_t>(units);
  const std::uint64_t magnitude = units < 0 ? 0 - bits : bits;
  String text;
  if (units < 0) text += u'-';
  AppendUInt(text, magnitude / kUnits);
  std::uint64_t decimals = magnitude % kUnits;
  if (decimals == 0) return text;
  text += u'.';
  for (std::uint64_t place = kUnits / 10; decimals > 0; place /= 10) {
    text += static_cast<char16_t>(u'0' + decimals / place);
    decimals %= place;
  }
  return text;
}

bool IsPlainDecimal(StringView text) {
  return TryStrToFloat(text, u'.').has_value() && text.find_first_of(u"eE") == StringView::npos;
}

}  // namespace

String VarToDecimalText(const Variant& value) {
  switch (value.Kind()) {
    case VariantKind::kDouble:
    case VariantKind::kSingle: return DoubleText(value.DoubleValue());
    case VariantKind::kCurrency: return CurrencyText(value.CurrencyUnitsValue());
    case VariantKind::kString:
      if (IsPlainDecimal(value.StringValue())) return Trim(value.StringValue());
      return DoubleText(VarToDouble(value));
    case VariantKind::kInteger:
    case VariantKind::kInt64: return IntToStr(value.Int64Value());
    default: return DoubleText(VarToDouble(value));
  }
}

}  // namespace zentavo
