// The mixing step of hash tables.
#pragma once

#include <cstdint>

namespace zentavo {

// Mixes all bits of `bits` into all bits of the result.
inline std::uint64_t MixBits(std::uint64_t bits) {
  bits = (bits ^ (bits >> 32)) * 0x9FB21C651E98DF25;
  bits = (bits ^ (bits >> 29)) * 0xD6E8FEB86659FD93;
  return bits ^ (bits >> 32);
}

}  // namespace zentavo
