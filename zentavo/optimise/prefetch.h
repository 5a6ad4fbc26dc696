// Asking the memory ahead for what will be needed.
#pragma once

#include <cstddef>

namespace zentavo::optimise_internal {

// Into the nearest cache: for what is needed next, little at a time.
inline void Prefetch(const void* address) {
  __builtin_prefetch(address);
  asm volatile("");  // or functions that do nothing else would be left out
}

// Into the next one: for a lot.
inline void PrefetchFar(const void* address) {
  __builtin_prefetch(address, 0, 2);
  asm volatile("");
}

// The address that is so many bytes away, which may be outside of the object.
inline const void* Beside(const void* address, std::ptrdiff_t bytes) {
  return static_cast<const char*>(address) + bytes;
}

}  // namespace zentavo::optimise_internal
