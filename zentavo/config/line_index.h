// An index of a list's lines by the hash of their keys. It holds no keys: the list that is indexed
// tells whether a line has the key in question.
#pragma once

#include <cstdint>
#include <vector>

#include "zentavo/framework/text.h"

namespace zentavo {

enum class KeyCase { kExact, kIgnored };

// Differs from run to run, so that no file can be made to put all its keys into one place.
std::uint32_t KeyHash(StringView key, KeyCase key_case);

class LineIndex {
 public:
  // Empties the index and makes room for so many lines.
  void Reset(std::size_t lines);

  // Enters a line. Where `same_key(other)` holds for a line that is there already, that one stays.
  template <typename SameKey>
  void Add(std::uint32_t hash, std::int32_t line, SameKey same_key) {
    if (used_ * 4 >= slots_.size() * 3) Grow();
    Slot& slot = slots_[PlaceOf(hash, same_key)];
    if (slot.line != kFree) return;
    slot = {hash, line};
    ++used_;
  }

  // The line for which `same_key(line)` holds, -1 when there is none.
  template <typename SameKey>
  std::int32_t Find(std::uint32_t hash, SameKey same_key) const {
    return slots_.empty() ? kFree : slots_[PlaceOf(hash, same_key)].line;
  }

 private:
  static constexpr std::int32_t kFree = -1;
  struct Slot {
    std::uint32_t hash = 0;
    std::int32_t line = kFree;
  };

  template <typename SameKey>
  std::size_t PlaceOf(std::uint32_t hash, SameKey same_key) const {
    const std::size_t mask = slots_.size() - 1;
    std::size_t place = hash & mask;
    while (slots_[place].line != kFree &&
           (slots_[place].hash != hash || !same_key(slots_[place].line))) {
      place = (place + 1) & mask;
    }
    return place;
  }
  void Grow();

  std::vector<Slot> slots_;  // a power of two, never full
  std::size_t used_ = 0;
};

}  // namespace zentavo
