// How one JSON value lies in memory: internal to the JSON classes.
#pragma once

#include <cstddef>
#include <cstdint>

#include "zentavo/framework/text.h"

namespace zentavo {

class TZAbstractObject;

namespace json_internal {

inline constexpr int kMostPower = 22;  // of ten that a double holds exactly

inline double PowerOfTen(std::size_t exponent) {
  static constexpr double kPowers[kMostPower + 1] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                     1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                                     1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
  return kPowers[exponent];
}

enum class SlotKind : std::uint8_t {
  kMissing,  // an empty slot
  kNull,
  kFalse,
  kTrue,
  kInteger,
  kDouble,
  kDecimal,  // a double as it was read; made one only when it is asked for
  kText,
  kShortKey,  // a key as short_key.h has them, in a document
  kObject,    // a nested container as it was read: its cells lie in the document
  kArray,
  kContainer,  // an owned TJSONContainer
  kBoxed,      // an owned value of another class
};

// One value, or the key of one, which is a text. What the pointers lead to belongs to the container
// that holds the slot, or to the document that it was read from.
struct Slot {
  union {
    std::int32_t integer;
    double number;
    std::int64_t digits;  // of a decimal, without its point
    const char16_t* units;
    Slot* cells;
    TZAbstractObject* object;
  };
  std::uint32_t size;  // of a text in units, of a nested container in values; a decimal's decimals
  SlotKind kind;

  StringView Text() const { return {units, size}; }
  bool IsText() const { return kind == SlotKind::kText || kind == SlotKind::kShortKey; }
  double DecimalValue() const { return static_cast<double>(digits) / PowerOfTen(size); }
  bool IsNested() const { return kind == SlotKind::kObject || kind == SlotKind::kArray; }
  bool IsContainer() const { return kind >= SlotKind::kObject && kind <= SlotKind::kContainer; }
  bool IsOwned() const { return kind >= SlotKind::kContainer; }

  static Slot Of(SlotKind kind) { return OfObject(kind, nullptr); }
  static Slot OfBoolean(bool value) { return Of(value ? SlotKind::kTrue : SlotKind::kFalse); }
  static Slot OfInteger(std::int32_t value) {
    Slot slot = Of(SlotKind::kInteger);
    slot.integer = value;
    return slot;
  }
  static Slot OfDouble(double value) {
    Slot slot;
    slot.number = value;
    slot.size = 0;
    slot.kind = SlotKind::kDouble;
    return slot;
  }
  // The double nearest to digits / 10^decimals; at most 15 digits.
  static Slot OfDecimal(std::int64_t digits, std::uint32_t decimals) {
    Slot slot;
    slot.digits = digits;
    slot.size = decimals;
    slot.kind = SlotKind::kDecimal;
    return slot;
  }
  static Slot OfText(StringView text) {
    Slot slot;
    slot.units = text.data();
    slot.size = static_cast<std::uint32_t>(text.size());
    slot.kind = SlotKind::kText;
    return slot;
  }
  static Slot OfCells(SlotKind kind, Slot* cells, std::size_t count) {
    Slot slot;
    slot.cells = cells;
    slot.size = static_cast<std::uint32_t>(count);
    slot.kind = kind;
    return slot;
  }
  static Slot OfObject(SlotKind kind, TZAbstractObject* object) {
    Slot slot;
    slot.object = object;
    slot.size = 0;
    slot.kind = kind;
    return slot;
  }
};

// The values of a container where they lie: one cell each, in an object behind a cell with the key.
class Cells {
 public:
  Cells() = default;
  Cells(const Slot* first, std::uint32_t count, bool keyed)
      : first_(first), count_(count), keyed_(keyed) {}
  // Of a nested container.
  explicit Cells(const Slot& slot) : Cells(slot.cells, slot.size, slot.kind == SlotKind::kObject) {}

  std::uint32_t Count() const { return count_; }
  bool Keyed() const { return keyed_; }
  const Slot* First() const { return first_; }
  const Slot* End() const { return first_ + Size(count_, keyed_); }
  const Slot& Value(std::uint32_t index) const {
    return first_[Size(index, keyed_) + (keyed_ ? 1 : 0)];
  }
  StringView Key(std::uint32_t index) const { return first_[Size(index, true)].Text(); }

  // The cells that so many values take.
  static std::size_t Size(std::size_t count, bool keyed) { return count << (keyed ? 1 : 0); }

 private:
  const Slot* first_ = nullptr;
  std::uint32_t count_ = 0;
  bool keyed_ = false;
};

}  // namespace json_internal

}  // namespace zentavo
