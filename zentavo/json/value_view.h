// A look at one value, boxed or in its container's slot: internal to the JSON classes.
#pragma once

#include <cstdint>
#include <optional>

#include "zentavo/framework/text.h"
#include "zentavo/json/slot.h"
#include "zentavo/json/value.h"

namespace zentavo::json_internal {

// Valid until the value's container changes.
struct ValueView {
  JSONKind kind = JSONKind::kNull;
  bool missing = false;  // an empty slot, or no value at all
  bool boolean = false;
  std::int32_t integer = 0;
  double number = 0;                         // of integers too
  StringView text = {};                      // of strings
  Cells cells = {};                          // of containers
  const TZAbstractObject* object = nullptr;  // of host classes

  bool IsContainer() const { return kind == JSONKind::kObject || kind == JSONKind::kArray; }
};

ValueView ViewOf(const Slot& slot);
ValueView ViewOf(const TZAbstractObject* value);  // null: missing
// A slot that owns nothing: a scalar, or one that lends `value`.
Slot SlotOf(const ValueView& value);
Slot SlotOf(const TZAbstractObject* value);
Cells CellsOf(const TZAbstractObject* container);

// The readings behind the typed operations; nothing when the value has none.
std::optional<bool> ReadBoolean(const ValueView& value);
std::optional<double> ReadDouble(const ValueView& value);
std::optional<std::int32_t> ReadInt(const ValueView& value);
std::int32_t ReadIntOr(const ValueView& value, std::int32_t fallback);  // beyond 32 bits too
String ReadText(const ValueView& value);

bool ScalarsEqual(const ValueView& a, const ValueView& b);
std::int32_t HashOf(double number);
std::int32_t HashOf(StringView text);
std::int32_t HashOf(const ValueView& value);

// Rounded halves to even; beyond 32 bits nothing, or ERangeError "Range check error".
std::optional<std::int32_t> TryRoundToInt(double value);
std::int32_t RoundToInt(double value);

}  // namespace zentavo::json_internal
