// Keys taken four units at a time: most are short, and looking one up costs little else.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "zentavo/framework/text.h"

namespace zentavo::key_words {

inline constexpr std::size_t kUnits = sizeof(std::uint64_t) / sizeof(char16_t);

inline std::uint64_t WordAt(const char16_t* units) {
  std::uint64_t word;
  std::memcpy(&word, units, sizeof word);
  return word;
}

constexpr std::uint64_t InEachUnit(std::uint64_t value) {
  return value * 0x0001'0001'0001'0001;
}

// Hands the key's words to `take`, the last one overlapping the one before where the length asks
// for it.
template <typename Take>
inline void ForEachWord(StringView key, const Take& take) {
  if (key.size() < kUnits) {
    std::uint64_t word = 0;
    for (const char16_t unit : key) word = word << 16 | unit;
    return take(word);
  }
  const std::size_t last = key.size() - kUnits;
  for (std::size_t at = 0; at < last; at += kUnits) take(WordAt(key.data() + at));
  take(WordAt(key.data() + last));
}

inline std::uint64_t Mixed(std::uint64_t hash, std::uint64_t word) {
  hash ^= word;
  return (hash ^ (hash >> 32)) * 0x9FB21C651E98DF25;
}

inline std::uint64_t Hash(std::uint64_t seed, StringView key) {
  std::uint64_t hash = seed + key.size();
  ForEachWord(key, [&](std::uint64_t word) { hash = Mixed(hash, word); });
  return hash;
}

// Without the bit that tells the case of ASCII letters; other units lose it, too.
inline std::uint64_t Folded(std::uint64_t word) {
  return word & ~InEachUnit(0x20);
}

// The same for a key that is not all ASCII.
std::uint64_t HashUpperCase(std::uint64_t seed, StringView key);

// Equal for keys that are equal without regard to case.
inline std::uint64_t HashIgnoringCase(std::uint64_t seed, StringView key) {
  std::uint64_t hash = seed + key.size();
  std::uint64_t all = 0;
  ForEachWord(key, [&](std::uint64_t word) {
    all |= word;
    hash = Mixed(hash, Folded(word));
  });
  return (all & InEachUnit(0xFF80)) == 0 ? hash : HashUpperCase(seed, key);
}

inline bool AreEqual(StringView a, StringView b) {
  if (a.size() != b.size()) return false;
  if (a.size() < kUnits) return a == b;
  const std::size_t last = a.size() - kUnits;
  for (std::size_t at = 0; at < last; at += kUnits) {
    if (WordAt(a.data() + at) != WordAt(b.data() + at)) return false;
  }
  return WordAt(a.data() + last) == WordAt(b.data() + last);
}

}  // namespace zentavo::key_words
