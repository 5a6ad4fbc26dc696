// An index of a list's lines by their keys: the front of a line, or all of it. The index holds
// views of the lines, so that a look-up touches no more than its slot and the line's text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "zentavo/framework/text.h"

namespace zentavo {

enum class KeyCase : std::uint8_t { kExact, kIgnored };

class LineIndex {
 public:
  static constexpr std::int32_t kNoLine = -1;

  struct Entry {
    std::uint32_t hash = 0;
    std::int32_t line = kNoLine;  // of the list; kNoLine in a free slot
    const char16_t* text = nullptr;
    std::uint32_t key_length = 0;
    std::uint32_t length = 0;

    StringView Key() const { return {text, key_length}; }
    StringView Line() const { return {text, length}; }
  };

  // Empties the index and makes room for so many lines.
  void Reset(std::size_t lines, KeyCase key_case);
  // Enters a line whose key is the first `key_length` units of `text`, which must stay where it is.
  // A line with that key that is there already stays.
  void Add(std::int32_t line, StringView text, std::size_t key_length);
  // Goes on with a line's new text. False, with nothing done, when the index does not hold the line
  // by that key.
  bool Renew(std::int32_t line, StringView old_text, StringView text, std::size_t key_length);

  // The line with that key, null when there is none. Valid until the index changes.
  const Entry* Find(StringView key) const;

 private:
  std::uint32_t HashOf(StringView key) const;
  bool SameKey(StringView a, StringView b) const;
  // Where the search for a hash begins, taken as a fraction of 1, and how it goes on.
  std::size_t FirstPlace(std::uint32_t hash) const {
    return static_cast<std::size_t>(std::uint64_t{hash} * slot_count_ >> 32);
  }
  std::size_t Behind(std::size_t place) const { return place + 1 == slot_count_ ? 0 : place + 1; }
  std::size_t PlaceOf(std::uint32_t hash, StringView key) const;
  void SetSlots(std::size_t count);
  void Grow();

  std::vector<Entry> slots_;  // never full
  std::size_t slot_count_ = 0;
  std::size_t used_ = 0;
  // Differs from run to run, so that no file can be made to put all its keys into one place.
  std::uint64_t seed_ = 0;
  KeyCase key_case_ = KeyCase::kIgnored;
};

}  // namespace zentavo
