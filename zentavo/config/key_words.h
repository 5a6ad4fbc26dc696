// Hashing and comparison of keys, most of which are short.
#pragma once

#include <cstddef>
#include <cstdint>

#include "zentavo/framework/text.h"
#include "zentavo/framework/text_hash.h"

namespace zentavo::key_words {

constexpr std::uint64_t InEachUnit(std::uint64_t value) {
  return value * 0x0001'0001'0001'0001;
}

// Without the bit that tells the case of ASCII letters; other units lose it, too.
inline std::uint64_t Folded(std::uint64_t word) {
  return word & ~InEachUnit(0x20);
}

// The same for a key that is not all ASCII.
std::uint64_t HashUpperCase(std::uint64_t seed, StringView key);

// Equal for keys that are equal without regard to case. Wants MixBits in the end.
inline std::uint64_t HashIgnoringCase(std::uint64_t seed, StringView key) {
  std::uint64_t hash = seed + key.size();
  std::uint64_t all = 0;
  text_hash::ForEachWord(key, [&](std::uint64_t word) {
    all |= word;
    hash = text_hash::Mixed(hash, Folded(word));
  });
  return (all & InEachUnit(0xFF80)) == 0 ? hash : HashUpperCase(seed, key);
}

inline bool AreEqual(StringView a, StringView b) {
  using text_hash::kUnitsInWord;
  using text_hash::WordAt;
  if (a.size() != b.size()) return false;
  if (a.size() < kUnitsInWord) return a == b;
  const std::size_t last = a.size() - kUnitsInWord;
  for (std::size_t at = 0; at < last; at += kUnitsInWord) {
    if (WordAt(a.data() + at) != WordAt(b.data() + at)) return false;
  }
  return WordAt(a.data() + last) == WordAt(b.data() + last);
}

}  // namespace zentavo::key_words
