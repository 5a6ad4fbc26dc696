#include "zentavo/json/value.h"

#include <limits>
#include <optional>

#include "zentavo/framework/format.h"
#include "zentavo/framework/number_text.h"
#include "zentavo/json/value_view.h"
#include "zentavo/json/writer.h"

namespace zentavo {

using json_internal::HashOf;
using json_internal::ScalarsEqual;
using json_internal::ViewOf;

namespace {

double ReadNumber(StringView text) {
  const std::optional<double> value = TryStrToFloat(text, u'.');
  if (value) return *value;
  throw NumberFormatException(Format(u"'%s' is not a valid floating point value", {Excerpt(text)}));
}

std::int32_t DigitValue(char16_t unit) {
  if (IsDigit(unit)) return unit - u'0';
  const char16_t upper = UpCase(unit);
  return upper >= u'A' && upper <= u'Z' ? upper - u'A' + 10 : std::numeric_limits<int>::max();
}

// The magnitude of the digits, at most `limit`; nothing when there are none or too much of it.
std::optional<std::int64_t> ReadDigits(StringView digits, std::int32_t radix, std::int64_t limit) {
  if (digits.empty()) return std::nullopt;
  std::int64_t value = 0;
  for (const char16_t unit : digits) {
    const std::int32_t digit = DigitValue(unit);
    if (digit >= radix) return std::nullopt;
    value = value * radix + digit;
    if (value > limit) return std::nullopt;
  }
  return value;
}

}  // namespace

std::unique_ptr<TZAbstractObject> TZAbstractObject::Clone() const {
  throw NotImplmentedFeature(String(ClassName()) + u".Clone is not implemented");
}
bool TZAbstractObject::equals(const TZAbstractObject& Value) const {
  return this == &Value;
}
std::int32_t TZAbstractObject::hash() const {
  return static_cast<std::int32_t>(reinterpret_cast<std::uintptr_t>(this) >> 4);
}
bool TZAbstractObject::instanceOf(const TZAbstractObject&) const {
  return true;
}
String TZAbstractObject::toString() const {
  return Format(u"%s <%p>", {ClassName(), static_cast<const void*>(this)});
}
StringView TZAbstractObject::ClassName() const {
  return u"TZAbstractObject";
}

bool _Number::equals(const TZAbstractObject& Value) const {
  return ScalarsEqual(ViewOf(this), ViewOf(&Value));
}
std::int32_t _Number::hash() const {
  return HashOf(doubleValue());
}
bool _Number::instanceOf(const TZAbstractObject& Value) const {
  return dynamic_cast<const _Number*>(&Value) != nullptr;
}
StringView _Number::ClassName() const {
  return u"_Number";
}

std::int32_t _Integer::parseInt(StringView Text, std::int32_t Radix) {
  StringView digits = Text;
  const bool negative = digits.starts_with(u'-');
  if (negative || digits.starts_with(u'+')) digits.remove_prefix(1);
  const std::int64_t limit = std::numeric_limits<std::int32_t>::max() + std::int64_t{negative};
  const std::optional<std::int64_t> value = ReadDigits(digits, Radix, limit);
  if (value) return static_cast<std::int32_t>(negative ? -*value : *value);
  throw NumberFormatException(Format(u"'%s' is not a valid integer value", {Excerpt(Text)}));
}
String _Integer::toHexString(char16_t Ch) {
  return IntToHex(Ch, 2);
}
std::unique_ptr<TZAbstractObject> _Integer::Clone() const {
  return std::make_unique<_Integer>(*this);
}
bool _Integer::instanceOf(const TZAbstractObject& Value) const {
  return dynamic_cast<const _Integer*>(&Value) != nullptr;
}
String _Integer::toString() const {
  return IntToStr(FValue);
}
StringView _Integer::ClassName() const {
  return u"_Integer";
}

_Double::_Double(StringView Text) : FValue(ReadNumber(Text)) {}
double _Double::NaN() {
  return std::numeric_limits<double>::quiet_NaN();
}
std::int32_t _Double::intValue() const {
  return json_internal::RoundToInt(FValue);
}
std::unique_ptr<TZAbstractObject> _Double::Clone() const {
  return std::make_unique<_Double>(*this);
}
bool _Double::instanceOf(const TZAbstractObject& Value) const {
  return dynamic_cast<const _Double*>(&Value) != nullptr;
}
String _Double::toString() const {
  String text;
  AppendValue(text, json_internal::Slot::OfDouble(FValue));
  return text;
}
StringView _Double::ClassName() const {
  return u"_Double";
}

const _Boolean& _Boolean::_TRUE() {
  static const _Boolean value(true);
  return value;
}
const _Boolean& _Boolean::_FALSE() {
  static const _Boolean value(false);
  return value;
}
std::unique_ptr<TZAbstractObject> _Boolean::Clone() const {
  return std::make_unique<_Boolean>(*this);
}
bool _Boolean::equals(const TZAbstractObject& Value) const {
  return ScalarsEqual(ViewOf(this), ViewOf(&Value));
}
bool _Boolean::instanceOf(const TZAbstractObject& Value) const {
  return dynamic_cast<const _Boolean*>(&Value) != nullptr;
}
String _Boolean::toString() const {
  return FValue ? u"true" : u"false";
}
StringView _Boolean::ClassName() const {
  return u"_Boolean";
}

std::unique_ptr<TZAbstractObject> _String::Clone() const {
  return std::make_unique<_String>(*this);
}
bool _String::equals(const TZAbstractObject& Value) const {
  return ScalarsEqual(ViewOf(this), ViewOf(&Value));
}
std::int32_t _String::hash() const {
  return HashOf(FText);
}
bool _String::instanceOf(const TZAbstractObject& Value) const {
  return dynamic_cast<const _String*>(&Value) != nullptr;
}
StringView _String::ClassName() const {
  return u"_String";
}

std::unique_ptr<TZAbstractObject> JNULL::Clone() const {
  return std::make_unique<JNULL>();
}
bool JNULL::equals(const TZAbstractObject& Value) const {
  return Value.Kind() == JSONKind::kNull;
}
bool JNULL::instanceOf(const TZAbstractObject& Value) const {
  return dynamic_cast<const JNULL*>(&Value) != nullptr;
}
StringView JNULL::ClassName() const {
  return u"JNULL";
}

}  // namespace zentavo
