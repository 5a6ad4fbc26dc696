// Hashes of texts for tables in memory, four units at a time. Not the same on every platform.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "zentavo/framework/text.h"

namespace zentavo::text_hash {

inline constexpr std::size_t kUnitsInWord = sizeof(std::uint64_t) / sizeof(char16_t);

inline std::uint64_t WordAt(const char16_t* units) {
  std::uint64_t word;
  std::memcpy(&word, units, sizeof word);
  return word;
}

// Hands the text's words to `take`, the last one overlapping the one before where the length asks
// for it.
template <typename Take>
inline void ForEachWord(StringView text, const Take& take) {
  if (text.size() < kUnitsInWord) {
    std::uint64_t word = 0;
    for (const char16_t unit : text) word = word << 16 | unit;
    return take(word);
  }
  const std::size_t last = text.size() - kUnitsInWord;
  for (std::size_t at = 0; at < last; at += kUnitsInWord) take(WordAt(text.data() + at));
  take(WordAt(text.data() + last));
}

// One word more in a hash, whose bits want MixBits in the end.
inline std::uint64_t Mixed(std::uint64_t hash, std::uint64_t word) {
  hash ^= word;
  return (hash ^ (hash >> 32)) * 0x9FB21C651E98DF25;
}

// Wants MixBits in the end.
inline std::uint64_t Hash(std::uint64_t seed, StringView text) {
  std::uint64_t hash = seed + text.size();
  ForEachWord(text, [&](std::uint64_t word) { hash = Mixed(hash, word); });
  return hash;
}

}  // namespace zentavo::text_hash
