// Numbers for the values of a column: equal values have equal numbers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "zentavo/framework/text.h"

namespace zentavo::optimise_internal {

using Code = std::int32_t;
inline constexpr Code kNoCode = -1;
inline constexpr Code kNoRightCode = -2;  // unlike a left row's

// What tells a value apart from others of its column, without allocating.
struct ValueKey {
  std::uint64_t bits = 0;  // of a number
  StringView text;         // of a text, which must outlive the codes
  std::uint64_t hash = 0;

  // An integer, and a number that is none, have different keys whatever their bits.
  static ValueKey OfInteger(std::int64_t value);
  static ValueKey OfReal(double value);  // of an integer the integer's
  static ValueKey OfText(StringView value);
};

// The codes of one column, from 0. May be used again for the next one.
class ValueCodes {
 public:
  // Forgets all; from then on there is room for `most` codes.
  void Reset(std::size_t most);
  Code Insert(const ValueKey& key);      // the key's code, a new one when it has none
  Code Find(const ValueKey& key) const;  // kNoCode when it has none
  std::size_t Count() const { return keys_.size(); }

  // Ask the memory for what looking the key up will touch first, and then, behind that.
  void PrefetchSlot(const ValueKey& key) const { Prefetch(&slots_[FirstSlot(key)]); }
  void PrefetchKept(const ValueKey& key) const;

  static void Prefetch(const void* address) { __builtin_prefetch(address); }

 private:
  // A text is kept by its address and length, a number by its bits.
  struct Key {
    std::uint64_t bits;
    const char16_t* text;
  };
  struct Slot {
    std::uint32_t tag = 0;  // of the hash
    Code code = kNoCode;
  };

  std::size_t FirstSlot(const ValueKey& key) const {
    return static_cast<std::uint32_t>(key.hash) & (slots_.size() - 1);
  }
  std::size_t SlotOf(const ValueKey& key) const;
  bool IsKey(const Slot& slot, const ValueKey& key) const;

  std::vector<Slot> slots_;
  std::vector<Key> keys_;
};

}  // namespace zentavo::optimise_internal
