#include "zentavo/expr/literals.h"

#include <cstdint>
#include <limits>

#include "zentavo/expr/parse_lib.h"
#include "zentavo/framework/exception.h"
#include "zentavo/framework/number_text.h"
#include "zentavo/framework/variant_convert.h"

namespace zentavo {

namespace script_scan {

std::optional<double> ReadFloat(StringView text) {
  if (text.ends_with(u'.')) text.remove_suffix(1);
  return TryStrToFloat(text, u'.');
}

String ReadCharacter(StringView code) {
  const std::int32_t value = StrToInt(code);
  const bool in_range = value >= 0 && value <= std::numeric_limits<char16_t>::max();
  if (!in_range) throw ERangeError(u"Range check error");
  return String(1, static_cast<char16_t>(value));
}

}  // namespace script_scan

namespace {

Variant NumberLiteral(StringView text) {
  if (text.find(u'.') != StringView::npos) {
    const std::optional<double> number = script_scan::ReadFloat(text);
    if (!number) RaiseNotFloat(text);
    return *number;
  }
  const std::optional<std::int32_t> integer = TryStrToInt(text);
  return integer ? Variant(*integer) : Variant(StrToInt64(text));
}

Variant WordLiteral(StringView text) {
  if (SameText(text, u"NULL")) return Variant::Null();
  if (SameText(text, u"True")) return true;
  if (SameText(text, u"False")) return false;
  return text;
}

// What a value looks like as an element of a list.
String ElementText(const Variant& value) {
  const bool whole = value.Kind() == VariantKind::kInteger || value.Kind() == VariantKind::kInt64;
  if (!value.IsNumeric() || whole) return VarToStr(value);
  String text;
  AppendFloat(text, VarToDouble(value));
  return text;
}

bool EqualsElement(StringView value, StringView element, std::uint8_t option) {
  if (option == vcExactText) return value == element;
  if (option != vcNumber) return SameText(value, element);
  const std::optional<double> number = TryStrToFloat(element, u'.');
  return number && number == TryStrToFloat(value, u'.');
}

}  // namespace

String RemoveQuotes(StringView Text) {
  const bool quoted = Text.size() >= 2 && Text.front() == u'\'' && Text.back() == u'\'';
  return String(quoted ? Text.substr(1, Text.size() - 2) : Text);
}

String ReadString(StringView Text) {
  return RemoveQuotes(Text);
}

void SplitFieldPath(StringView Path, String& First, String& Second) {
  const auto point = Path.find(u'.');
  String second(point == StringView::npos ? StringView() : Path.substr(point + 1));
  First = String(Path.substr(0, point));
  Second = std::move(second);
}

Variant StrToVariant(StringView Text) {
  const StringView text = TrimView(Text);
  if (text.empty()) return Variant::Null();
  if (text.front() == u'#') return script_scan::ReadCharacter(text.substr(1));
  if (text.front() == u'\'') return ReadString(text);
  return IsDigit(text.front()) ? NumberLiteral(text) : WordLiteral(text);
}

bool ValueInString(const Variant& Value, StringView List, std::uint8_t Option) {
  const String value = ElementText(Value);
  std::int32_t position = 1;
  while (position <= static_cast<std::int32_t>(List.size())) {
    if (EqualsElement(value, ExtractCommaName(List, position), Option)) return true;
  }
  return false;
}

}  // namespace zentavo
