#include "zentavo/json/storage.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <utility>

#include "zentavo/framework/exception.h"

namespace zentavo::json_internal {

Storage::Storage(bool keyed, std::span<const Slot> slots, const TextRef* keys, StringView text)
    : keyed_(keyed) {
  Allocate(slots.size(), text.size());
  std::copy(slots.begin(), slots.end(), Slots());
  if (keyed) std::copy_n(keys, slots.size(), KeysIn(block_.get(), capacity_));
  std::copy(text.begin(), text.end(), Units());
  count_ = capacity_;
  units_ = unit_capacity_;
}

Storage::Storage(const Storage& other) : keyed_(other.keyed_) {
  Allocate(other.count_, other.units_ - other.unused_units_);
  CopyContent(other);
}

Storage::Storage(Storage&& other) noexcept : Storage(other.keyed_) {
  swap(other);
}

void Storage::swap(Storage& other) noexcept {
  std::swap(block_, other.block_);
  std::swap(count_, other.count_);
  std::swap(capacity_, other.capacity_);
  std::swap(units_, other.units_);
  std::swap(unit_capacity_, other.unit_capacity_);
  std::swap(unused_units_, other.unused_units_);
}

void Storage::Allocate(std::size_t slots, std::size_t units) {
  constexpr std::size_t kLimit = std::numeric_limits<std::uint32_t>::max();
  constexpr std::size_t kBytes = std::numeric_limits<std::size_t>::max() / 2;
  if (slots > kLimit || units > kLimit || slots > kBytes / SlotBytes(keyed_) ||
      units > (kBytes - slots * SlotBytes(keyed_)) / sizeof(char16_t)) {
    throw ERangeError(u"Range check error");
  }
  const std::size_t bytes = slots * SlotBytes(keyed_) + units * sizeof(char16_t);
  if (bytes > 0) block_ = std::make_unique_for_overwrite<std::byte[]>(bytes);
  capacity_ = static_cast<std::uint32_t>(slots);
  unit_capacity_ = static_cast<std::uint32_t>(units);
}

void Storage::CopyContent(const Storage& from) {
  std::copy_n(from.Slots(), from.count_, Slots());
  if (keyed_) std::copy_n(from.Keys(), from.count_, KeysIn(block_.get(), capacity_));
  count_ = from.count_;
  if (from.unused_units_ > 0) {
    CopyUsedTexts(from);
  } else {
    std::copy_n(from.Units(), from.units_, Units());
    units_ = from.units_;
  }
}

void Storage::CopyUsedTexts(const Storage& from) {
  TextRef* keys = KeysIn(block_.get(), capacity_);
  for (std::uint32_t index = 0; index < count_; ++index) {
    if (keyed_) keys[index] = AddText(from.Key(index));
    Slot& slot = At(index);
    if (slot.kind == SlotKind::kText) slot.text = AddText(from.Text(slot.text));
  }
}

Storage::OldBlock Storage::MakeRoom(std::uint32_t slots, std::size_t units) {
  const std::size_t need_slots = std::size_t{count_} + slots;
  const std::size_t need_units = units_ + units;
  if (need_slots <= capacity_ && need_units <= unit_capacity_) return nullptr;
  const std::size_t live_units = units_ - unused_units_ + units;
  Storage grown(keyed_);
  grown.Allocate(need_slots <= capacity_ ? capacity_ : need_slots + need_slots / 2 + 1,
                 need_units <= unit_capacity_ ? unit_capacity_ : live_units + live_units / 2);
  grown.CopyContent(*this);
  swap(grown);
  return std::move(grown.block_);
}

TextRef Storage::AddText(StringView text) {
  const TextRef added{units_, static_cast<std::uint32_t>(text.size())};
  std::copy(text.begin(), text.end(), Units() + units_);
  units_ += added.length;
  return added;
}

void Storage::AddSlot(Slot slot) {
  Slots()[count_++] = slot;
}

void Storage::AddMember(TextRef key, Slot slot) {
  KeysIn(block_.get(), capacity_)[count_] = key;
  AddSlot(slot);
}

void Storage::Erase(std::uint32_t index) {
  if (keyed_) {
    TextRef* keys = KeysIn(block_.get(), capacity_);
    DropText(keys[index]);
    std::copy(keys + index + 1, keys + count_, keys + index);
  }
  std::copy(Slots() + index + 1, Slots() + count_, Slots() + index);
  --count_;
}

void Storage::Clear() noexcept {
  block_.reset();
  count_ = capacity_ = units_ = unit_capacity_ = unused_units_ = 0;
}

}  // namespace zentavo::json_internal
