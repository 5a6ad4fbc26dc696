#include "zentavo/config/key_words.h"

namespace zentavo::key_words {

std::uint64_t HashUpperCase(std::uint64_t seed, StringView key) {
  std::uint64_t hash = seed + key.size();
  text_hash::ForEachWord(key, [&](std::uint64_t word) {
    std::uint64_t upper = 0;
    for (std::size_t shift = 0; shift < 64; shift += 16) {
      upper |= std::uint64_t{UpperUnit(static_cast<char16_t>(word >> shift))} << shift;
    }
    hash = text_hash::Mixed(hash, Folded(upper));
  });
  return hash;
}

}  // namespace zentavo::key_words
