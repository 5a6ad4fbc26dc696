#include "zentavo/optimise/value_codes.h"

#include <bit>
#include <cmath>
#include <cstring>

#include "zentavo/framework/mix_bits.h"
#include "zentavo/framework/text_hash.h"

namespace zentavo::optimise_internal {

namespace {

// Different kinds of keys must not meet in a table by their bits alone.
constexpr std::uint64_t kKindBit = 0x80000000;  // in the tag, not in the place

constexpr std::uint32_t TagOf(std::uint64_t hash) {
  return static_cast<std::uint32_t>(hash);
}

bool IsInteger(double value) {
  return value >= -0x1p63 && value < 0x1p63 && std::trunc(value) == value;
}

}  // namespace

ValueKey ValueKey::OfInteger(std::int64_t value) {
  const auto bits = static_cast<std::uint64_t>(value);
  return {bits, {}, MixBits(bits) & ~kKindBit};
}

ValueKey ValueKey::OfReal(double value) {
  if (IsInteger(value)) return OfInteger(static_cast<std::int64_t>(value));
  const auto bits = std::bit_cast<std::uint64_t>(value);
  return {bits, {}, MixBits(bits) | kKindBit};
}

ValueKey ValueKey::OfText(StringView value) {
  return {value.size(), value, MixBits(text_hash::Hash(0, value))};
}

void ValueCodes::Reset(std::size_t most) {
  keys_.clear();
  slots_.assign(std::bit_ceil(most * 2 + 1), {});
}

Code ValueCodes::Insert(const ValueKey& key) {
  Slot& slot = slots_[SlotOf(key)];
  if (slot.code == kNoCode) {
    slot = {TagOf(key.hash), static_cast<Code>(keys_.size())};
    keys_.push_back({key.bits, key.text.data()});
  }
  return slot.code;
}

Code ValueCodes::Find(const ValueKey& key) const {
  return slots_[SlotOf(key)].code;
}

void ValueCodes::PrefetchKept(const ValueKey& key) const {
  const Slot& slot = slots_[FirstSlot(key)];
  if (slot.code == kNoCode || slot.tag != TagOf(key.hash)) return;
  const Key& kept = keys_[static_cast<std::size_t>(slot.code)];
  if (kept.text != nullptr) Prefetch(kept.text);
}

// The slot that holds the key, or the empty one where it belongs.
std::size_t ValueCodes::SlotOf(const ValueKey& key) const {
  const std::size_t mask = slots_.size() - 1;
  std::size_t at = FirstSlot(key);
  while (slots_[at].code != kNoCode && !IsKey(slots_[at], key)) at = (at + 1) & mask;
  return at;
}

bool ValueCodes::IsKey(const Slot& slot, const ValueKey& key) const {
  if (slot.tag != TagOf(key.hash)) return false;
  const Key& kept = keys_[static_cast<std::size_t>(slot.code)];
  if (kept.bits != key.bits) return false;
  if (kept.text == key.text.data()) return true;
  if (kept.text == nullptr || key.text.data() == nullptr) return false;
  return std::memcmp(kept.text, key.text.data(), key.text.size() * sizeof(char16_t)) == 0;
}

}  // namespace zentavo::optimise_internal
