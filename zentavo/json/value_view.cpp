#include "zentavo/json/value_view.h"

#include <bit>
#include <utility>

#include "zentavo/framework/number_text.h"
#include "zentavo/json/container.h"
#include "zentavo/json/writer.h"

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
ValueView OfCells(const Cells& cells) {
  return {.kind = cells.Keyed() ? JSONKind::kObject : JSONKind::kArray, .cells = cells};
}

bool IsNumber(const ValueView& value) {
  return value.kind == JSONKind::kInteger || value.kind == JSONKind::kDouble;
}

}  // namespace

ValueView ViewOf(const Slot& slot) {
  switch (slot.kind) {
    case SlotKind::kMissing: return {.missing = true};
    case SlotKind::kNull: return {};
    case SlotKind::kFalse: return OfBoolean(false);
    case SlotKind::kTrue: return OfBoolean(true);
    case SlotKind::kInteger: return OfInteger(slot.integer);
    case SlotKind::kDouble: return OfDouble(slot.number);
    case SlotKind::kDecimal: return OfDouble(slot.DecimalValue());
    case SlotKind::kText:
    case SlotKind::kShortKey: return OfText(slot.Text());
    case SlotKind::kObject:
    case SlotKind::kArray: return OfCells(Cells(slot));
    case SlotKind::kContainer: return OfCells(CellsOf(slot.object));
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
    case JSONKind::kObject:
    case JSONKind::kArray: return OfCells(CellsOf(value));
    case JSONKind::kOther: break;
  }
  return {.kind = JSONKind::kOther, .object = value};
}

Slot SlotOf(const ValueView& value) {
  switch (value.kind) {
    case JSONKind::kNull: return Slot::Of(value.missing ? SlotKind::kMissing : SlotKind::kNull);
    case JSONKind::kBoolean: return Slot::OfBoolean(value.boolean);
    case JSONKind::kInteger: return Slot::OfInteger(value.integer);
    case JSONKind::kDouble: return Slot::OfDouble(value.number);
    case JSONKind::kString: return Slot::OfText(value.text);
    case JSONKind::kOther: break;
    default: {
      auto* first = const_cast<Slot*>(value.cells.First());  // for reading only
      const SlotKind kind = value.kind == JSONKind::kObject ? SlotKind::kObject : SlotKind::kArray;
      return Slot::OfCells(kind, first, value.cells.Count());
    }
  }
  return Slot::OfObject(SlotKind::kBoxed, const_cast<TZAbstractObject*>(value.object));
}

Slot SlotOf(const TZAbstractObject* value) {
  return SlotOf(ViewOf(value));
}

Cells CellsOf(const TZAbstractObject* container) {
  return Access::Of(static_cast<const TJSONContainer&>(*container)).All();
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
    case JSONKind::kOther: return value.object->toString();
    default: break;
  }
  String text;
  AppendValue(text, SlotOf(value));
  return text;
}

bool ScalarsEqual(const ValueView& a, const ValueView& b) {
  if (IsNumber(a) && IsNumber(b)) return a.number == b.number;
  if (a.kind != b.kind) return false;
  switch (a.kind) {
    case JSONKind::kNull: return true;
    case JSONKind::kBoolean: return a.boolean == b.boolean;
    case JSONKind::kString: return a.text == b.text;
    case JSONKind::kOther: return a.object == b.object || a.object->equals(*b.object);
    default: return a.cells.First() == b.cells.First();
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
    case JSONKind::kOther: return value.object->hash();
    default: return static_cast<std::int32_t>(value.cells.Count());
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
