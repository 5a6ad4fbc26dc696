// Numbers for the values of a column: equal values have equal numbers.
#pragma once

#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "zentavo/framework/mix_bits.h"
#include "zentavo/framework/text_hash.h"
#include "zentavo/optimise/prefetch.h"

namespace zentavo::optimise_internal {

using Code = std::int32_t;
inline constexpr Code kNoCode = -1;
inline constexpr Code kNoRightCode = -2;  // unlike a left row's

// What tells a value apart from others of its column, without allocating. Set in place: a copy made
// right after would wait for its parts.
class ValueKey {
 public:
  void SetInteger(std::int64_t value) { SetNumber(static_cast<std::uint64_t>(value), nullptr); }
  void SetReal(double value) {  // an integer is the integer's key
    if (value >= -0x1p63 && value < 0x1p63 && std::trunc(value) == value) {
      return SetInteger(static_cast<std::int64_t>(value));
    }
    SetNumber(std::bit_cast<std::uint64_t>(value), &kReal);
  }
  // The text must outlive the codes.
  void SetText(StringView value) {
    hash_ = HashOf(text_hash::Hash(0, value));
    bits_ = std::uint64_t{value.size()} << 32 | hash_;
    text_ = value.data();
  }

 private:
  friend class ValueCodes;

  static constexpr char16_t kReal = 0;  // its address marks a number that is no integer

  static std::uint32_t HashOf(std::uint64_t bits) {
    return static_cast<std::uint32_t>(MixBits(bits));
  }
  void SetNumber(std::uint64_t bits, const char16_t* sort) {
    bits_ = bits;
    text_ = sort;
    hash_ = HashOf(bits);
  }
  bool IsText() const { return text_ != nullptr && text_ != &kReal; }

  std::uint64_t bits_;    // of a number; of a text its length and hash
  const char16_t* text_;  // null or kReal's address for a number
  std::uint32_t hash_;
};

// The codes of one column, from 0.
class ValueCodes {
 public:
  // There is room for `most` codes, fewer than 2^30.
  explicit ValueCodes(std::size_t most);
  // The key's code, a new one when it has none.
  Code Insert(const ValueKey& key) {
    if (keys_.size() * 2 >= slots_.size()) Grow();
    std::uint32_t& slot = slots_[PlaceOf(key)];
    if (slot == 0) Add(key, slot);
    return CodeIn(slot);
  }
  // kNoCode when it has none.
  Code Find(const ValueKey& key) const { return CodeIn(slots_[PlaceOf(key)]); }
  std::size_t Count() const { return keys_.size(); }

  // Whether looking up may have to wait for the memory.
  bool IsLarge() const { return slots_.size() > kFirstSlots; }
  // Ask the memory for what looking the key up will touch: its slot; the key it is compared with,
  // once the slot is there; and its text, once that key is there.
  void PrefetchSlot(const ValueKey& key) const { Prefetch(&slots_[key.hash_ & mask_]); }
  void PrefetchKept(const ValueKey& key) const {
    const std::uint32_t slot = FirstLike(key);
    if (slot != 0) Prefetch(&keys_[IndexIn(slot)]);
  }
  void PrefetchText(const ValueKey& key) const {
    const std::uint32_t slot = FirstLike(key);
    if (slot != 0) Prefetch(keys_[IndexIn(slot)].text);
  }

 private:
  static constexpr std::size_t kFirstSlots = 1024;

  // As in a ValueKey.
  struct Key {
    std::uint64_t bits;
    const char16_t* text;
  };

  // A slot is 0, or one more than a code in the bits that number the slots, and the hash in those
  // above, so that few keys need be looked at and many slots are near each other.
  Code CodeIn(std::uint32_t slot) const { return static_cast<Code>(slot & mask_) - 1; }
  std::size_t IndexIn(std::uint32_t slot) const { return (slot & mask_) - 1; }
  bool IsLike(std::uint32_t slot, const ValueKey& key) const {
    return ((slot ^ key.hash_) & ~mask_) == 0;
  }
  bool IsKey(std::uint32_t slot, const ValueKey& key) const {
    const Key& kept = keys_[IndexIn(slot)];
    return kept.bits == key.bits_ && (kept.text == key.text_ || SameText(kept, key));
  }
  // The slot that most likely holds the key; 0 when none does.
  std::uint32_t FirstLike(const ValueKey& key) const {
    std::size_t at = key.hash_ & mask_;
    while (slots_[at] != 0 && !IsLike(slots_[at], key)) at = (at + 1) & mask_;
    return slots_[at];
  }
  // The slot that holds the key, or the empty one where it belongs.
  std::size_t PlaceOf(const ValueKey& key) const {
    std::size_t at = key.hash_ & mask_;
    while (slots_[at] != 0 && !(IsLike(slots_[at], key) && IsKey(slots_[at], key))) {
      at = (at + 1) & mask_;
    }
    return at;
  }
  static bool SameText(const Key& kept, const ValueKey& key);
  static std::uint32_t HashOf(const Key& key);
  void Add(const ValueKey& key, std::uint32_t& slot);
  void Grow();

  std::vector<std::uint32_t> slots_;  // a power of two, at least twice the keys
  std::vector<Key> keys_;
  std::uint32_t mask_;
  std::size_t most_slots_;
};

}  // namespace zentavo::optimise_internal
