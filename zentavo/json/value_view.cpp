#include "zentavo/json/value_view.h"

#include <bit>
#include <utility>

#include "zentavo/framework/number_text.h"
#include "zentavo/json/container.h"

namespace zentavo::json_internal {

namespace {

ValueView OfBoolean(bool value) {
  return {.kind = JSONKind::kBoolean, .boolean = value};
}
ValueView OfInteger(std::int32_t value) {
  return {.kind = JSONKind::kInteger, .integer = value, .number = static_cast<double>(value)};
}
ValueView OfDouble(double value) {
  return {.kind = JSONKind::kDouble, .number = value};
}
ValueView OfText(StringView text) {
  return {.kind = JSONKind::kString, .text = text};
}
ValueView OfObject(const TZAbstractObject* object) {
  return {.kind = object->Kind(), .object = object};
}

bool IsNumber(const ValueView& value) {
  return value.kind == JSONKind::kInteger || value.kind == JSONKind::kDouble;
}

}  // namespace

ValueView ViewOf(const Slot& slot, const Storage& storage) {
  switch (slot.kind) {
    case SlotKind::kMissing: return {.missing = true};
    case SlotKind::kNull: return {};
    case SlotKind::kFalse: return OfBoolean(false);
    case SlotKind::kTrue: return OfBoolean(true);
    case SlotKind::kInteger: return OfInteger(slot.integer);
    case SlotKind::kDouble: return OfDouble(slot.number);
    case SlotKind::kText: return OfText(storage.Text(slot.text));
    case SlotKind::kContainer: return OfObject(slot.object);
    case SlotKind::kBoxed: break;
  }
  return ViewOf(slot.object);
}

ValueView ViewOf(const TZAbstractObject* value) {
  if (value == nullptr) return {.missing = true};
  switch (value->Kind()) {
    case JSONKind::kNull: return {};
    case JSONKind::kBoolean: return OfBoolean(static_cast<const _Boolean*>(value)->boolValue());
    case JSONKind::kInteger: return OfInteger(static_cast<const _Integer*>(value)->intValue());
    case JSONKind::kDouble: return OfDouble(static_cast<const _Double*>(value)->doubleValue());
    case JSONKind::kString: return OfText(static_cast<const _String*>(value)->Text());
    default: return OfObject(value);
  }
}

std::optional<bool> ReadBoolean(const ValueView& value) {
  if (value.missing) return std::nullopt;
  if (value.kind == JSONKind::kBoolean) return value.boolean;
  if (value.kind != JSONKind::kString) return std::nullopt;
  if (SameText(value.text, u"true")) return true;
  if (SameText(value.text, u"false")) return false;
  return std::nullopt;
}

std::optional<double> ReadDouble(const ValueView& value) {
  if (IsNumber(value)) return value.number;
  if (value.kind == JSONKind::kString) return TryStrToFloat(value.text, u'.');
  if (value.kind == JSONKind::kOther) return TryStrToFloat(value.object->toString(), u'.');
  return std::nullopt;
}

std::optional<std::int32_t> ReadInt(const ValueView& value) {
  if (value.kind == JSONKind::kInteger) return value.integer;
  const std::optional<double> number = ReadDouble(value);
  if (!number) return std::nullopt;
  return RoundToInt(*number);
}

std::int32_t ReadIntOr(const ValueView& value, std::int32_t fallback) {
  if (value.kind == JSONKind::kInteger) return value.integer;
  const std::optional<double> number = ReadDouble(value);
  return number ? TryRoundToInt(*number).value_or(fallback) : fallback;
}

String ReadText(const ValueView& value) {
  switch (value.kind) {
    case JSONKind::kNull: return u"null";
    case JSONKind::kBoolean: return value.boolean ? u"true" : u"false";
    case JSONKind::kInteger: return IntToStr(value.integer);
    case JSONKind::kDouble: return _Double(value.number).toString();
    case JSONKind::kString: return String(value.text);
    default: return value.object->toString();
  }
}

bool ScalarsEqual(const ValueView& a, const ValueView& b) {
  if (IsNumber(a) && IsNumber(b)) return a.number == b.number;
  if (a.kind != b.kind) return false;
  switch (a.kind) {
    case JSONKind::kNull: return true;
    case JSONKind::kBoolean: return a.boolean == b.boolean;
    case JSONKind::kString: return a.text == b.text;
    default: return a.object == b.object || a.object->equals(*b.object);
  }
}

std::int32_t HashOf(double number) {
  const auto bits = std::bit_cast<std::uint64_t>(number == 0 ? 0.0 : number);
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(bits ^ (bits >> 32)));
}

std::int32_t HashOf(StringView text) {
  std::uint32_t hash = 0;
  for (const char16_t unit : text) hash = hash * 31 + unit;
  return static_cast<std::int32_t>(hash);
}

std::int32_t HashOf(const ValueView& value) {
  switch (value.kind) {
    case JSONKind::kNull: return 0;
    case JSONKind::kBoolean: return value.boolean ? 1 : 0;
    case JSONKind::kInteger:
    case JSONKind::kDouble: return HashOf(value.number);
    case JSONKind::kString: return HashOf(value.text);
    default: return value.object->hash();
  }
}

std::optional<std::int32_t> TryRoundToInt(double value) {
  if (!(value > -2147483649.0 && value < 2147483648.0)) return std::nullopt;
  const std::int64_t rounded = Round(value);
  if (!std::in_range<std::int32_t>(rounded)) return std::nullopt;
  return static_cast<std::int32_t>(rounded);
}

std::int32_t RoundToInt(double value) {
  const std::optional<std::int32_t> rounded = TryRoundToInt(value);
  if (!rounded) throw ERangeError(u"Range check error");
  return *rounded;
}

}  // namespace zentavo::json_internal
