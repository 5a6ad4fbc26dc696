// How containers keep their values: internal to the JSON classes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "zentavo/framework/text.h"

namespace zentavo {

class TZAbstractObject;

namespace json_internal {

// A text in a container's own text area.
struct TextRef {
  std::uint32_t offset;
  std::uint32_t length;
};

enum class SlotKind : std::uint8_t {
  kMissing,  // an empty slot
  kNull,
  kFalse,
  kTrue,
  kInteger,
  kDouble,
  kText,
  kBoxed,      // an owned value other than a container
  kContainer,  // an owned TJSONContainer
};

// One value. The container that holds the slot owns `object`.
struct Slot {
  union {
    std::int32_t integer;
    double number;
    TextRef text;
    TZAbstractObject* object;
  };
  SlotKind kind;

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
    slot.kind = SlotKind::kDouble;
    return slot;
  }
  static Slot OfText(TextRef text) {
    Slot slot;
    slot.text = text;
    slot.kind = SlotKind::kText;
    return slot;
  }
  static Slot OfObject(SlotKind kind, TZAbstractObject* object) {
    Slot slot;
    slot.object = object;
    slot.kind = kind;
    return slot;
  }
};

// Slots, their keys when the container is keyed, and their texts, in one block of memory. It frees
// the block, never what slots point to. Movable.
class Storage {
 public:
  // Keeps a block alive that a growing storage has left, and with it the views into it.
  using OldBlock = std::unique_ptr<std::byte[]>;

  explicit Storage(bool keyed) : keyed_(keyed) {}
  // Exactly this content; texts refer to `text`.
  Storage(bool keyed, std::span<const Slot> slots, const TextRef* keys, StringView text);
  Storage(const Storage& other);  // what slots point to is shared; the caller puts that right
  Storage(Storage&& other) noexcept;
  Storage& operator=(const Storage&) = delete;
  Storage& operator=(Storage&&) = delete;

  void swap(Storage& other) noexcept;

  std::uint32_t Count() const { return count_; }
  Slot* Slots() const { return reinterpret_cast<Slot*>(block_.get()); }
  Slot& At(std::uint32_t index) const { return Slots()[index]; }
  const TextRef* Keys() const { return KeysIn(block_.get(), capacity_); }
  StringView Text(TextRef text) const { return {Units() + text.offset, text.length}; }
  StringView Key(std::uint32_t index) const { return Text(Keys()[index]); }

  // Makes room for so many more. Raises ERangeError "Range check error" beyond 32 bits.
  [[nodiscard]] OldBlock MakeRoom(std::uint32_t slots, std::size_t units);
  // These need room.
  TextRef AddText(StringView text);
  void AddSlot(Slot slot);
  void AddMember(TextRef key, Slot slot);

  void DropText(TextRef text) const { unused_units_ += text.length; }
  void Erase(std::uint32_t index);
  void RemoveLast() { --count_; }  // its texts stay in the block
  void RemovePlainAtEnd() {        // likewise, up to the last slot that owns a value
    while (count_ > 0 && At(count_ - 1).kind < SlotKind::kBoxed) --count_;
  }
  void Clear() noexcept;

 private:
  static std::size_t SlotBytes(bool keyed) { return sizeof(Slot) + (keyed ? sizeof(TextRef) : 0); }
  static TextRef* KeysIn(std::byte* block, std::uint32_t capacity) {
    return reinterpret_cast<TextRef*>(block + capacity * sizeof(Slot));
  }
  char16_t* Units() const {
    return reinterpret_cast<char16_t*>(block_.get() + capacity_ * SlotBytes(keyed_));
  }
  void Allocate(std::size_t slots, std::size_t units);
  void CopyContent(const Storage& from);
  void CopyUsedTexts(const Storage& from);

  std::unique_ptr<std::byte[]> block_;
  std::uint32_t count_ = 0;
  std::uint32_t capacity_ = 0;
  std::uint32_t units_ = 0;
  std::uint32_t unit_capacity_ = 0;
  mutable std::uint32_t unused_units_ = 0;  // of texts that no slot or key refers to
  bool keyed_;
};

}  // namespace json_internal

}  // namespace zentavo
