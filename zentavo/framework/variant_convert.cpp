#include "zentavo/framework/variant_convert.h"

#include <array>
#include <optional>
#include <string_view>
#include <utility>

#include "zentavo/framework/code_page.h"
#include "zentavo/framework/exception.h"
#include "zentavo/framework/format_settings.h"
#include "zentavo/framework/number_text.h"
#include "zentavo/framework/variant_number.h"

namespace zentavo {

namespace {

using variant_internal::kCurrencyScale;
using variant_internal::RaiseCast;
using variant_internal::ReadInteger;
using variant_internal::ReadNumber;

constexpr std::u16string_view kTrue = u"True";
constexpr std::u16string_view kFalse = u"False";

constexpr int kCurrencyDecimals = 4;

// Exact, without zeros at the end.
void AppendCurrency(String& out, std::int64_t units) {
  const bool negative = units < 0;
  const std::uint64_t magnitude =
      negative ? 0 - static_cast<std::uint64_t>(units) : static_cast<std::uint64_t>(units);
  constexpr std::uint64_t kScale = kCurrencyScale;
  if (negative) out += u'-';
  AppendUInt(out, magnitude / kScale);
  if (magnitude % kScale == 0) return;
  out += FormatSettings().DecimalSeparator;
  const std::size_t fraction_at = out.size();
  AppendUInt(out, magnitude % kScale);
  out.insert(fraction_at, kCurrencyDecimals - (out.size() - fraction_at), u'0');
  while (out.back() == u'0') out.pop_back();
}

void AppendByteArray(String& out, const Variant::ByteArray& bytes) {
  out += FromSystemAnsi({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

}  // namespace

StringView VariantKindName(VariantKind kind) {
  static constexpr std::array<StringView, 12> kNames = {
      u"Empty",  u"Null",     u"Boolean", u"Integer", u"Int64", u"Single",
      u"Double", u"Currency", u"Date",    u"String",  u"Array", u"Byte array"};
  return kNames[static_cast<std::size_t>(kind)];
}

String VarToStr(const Variant& value) {
  String text;
  AppendVariant(text, value);
  return text;
}

void AppendVariant(String& out, const Variant& value) {
  switch (value.Kind()) {
    case VariantKind::kEmpty:
    case VariantKind::kNull: break;
    case VariantKind::kBoolean: out += value.BooleanValue() ? kTrue : kFalse; break;
    case VariantKind::kInteger:
    case VariantKind::kInt64: AppendInt(out, value.Int64Value()); break;
    case VariantKind::kSingle:
    case VariantKind::kDouble:
      AppendFloat(out, value.DoubleValue(), FormatSettings().DecimalSeparator);
      break;
    case VariantKind::kCurrency: AppendCurrency(out, value.CurrencyUnitsValue()); break;
    case VariantKind::kDate: out += DateTimeToStr(value.DoubleValue()); break;
    case VariantKind::kString: out += value.StringValue(); break;
    case VariantKind::kByteArray: AppendByteArray(out, value.ByteArrayValue()); break;
    case VariantKind::kArray: RaiseCast(value, VariantKind::kString);
  }
}

double VarToDouble(const Variant& value) {
  return ReadNumber(value).AsDouble();
}

std::int32_t VarToInt32(const Variant& value) {
  const std::int64_t integer = ReadInteger(value, VariantKind::kInteger);
  if (!std::in_range<std::int32_t>(integer)) throw ERangeError(u"Range check error");
  return static_cast<std::int32_t>(integer);
}

std::int64_t VarToInt64(const Variant& value) {
  return ReadInteger(value);
}

bool VarToBoolean(const Variant& value) {
  if (value.IsString() && SameText(value.StringValue(), kTrue)) return true;
  if (value.IsString() && SameText(value.StringValue(), kFalse)) return false;
  const variant_internal::Number number = ReadNumber(value, VariantKind::kBoolean);
  return number.IsReal() ? number.real != 0 : number.whole != 0;
}

TDateTime VarToDateTime(const Variant& value) {
  if (value.IsString()) {
    const std::optional<TDateTime> date = TryStrToDateTime(value.StringValue(), FormatSettings());
    if (date) return *date;
  }
  return ReadNumber(value, VariantKind::kDate).AsDouble();
}

Variant VarArrayOf(std::vector<Variant> values) {
  return Variant(std::move(values));
}

}  // namespace zentavo
