// Random numbers that are the same on every platform for the same seed.
//
//   RandomStream random(42);
//   random.Below(6);     // 0..5
//   random.Fraction();   // 0 <= x < 1
//
// A value type; used by one thread at a time. Not for secrets.
#pragma once

#include <array>
#include <bit>
#include <cstdint>

namespace zentavo {

class RandomStream {
 public:
  explicit RandomStream(std::uint64_t seed = 0) { Seed(seed); }

  // Starts the stream of `seed` afresh; every seed is good.
  void Seed(std::uint64_t seed) {
    for (std::uint64_t& word : state_) word = Scramble(seed += kStep);
  }

  // 64 random bits.
  std::uint64_t Next() {
    const std::uint64_t result = std::rotl(state_[0] + state_[3], 23) + state_[0];
    const std::uint64_t shifted = state_[1] << 17;
    state_[2] ^= state_[0];
    state_[3] ^= state_[1];
    state_[1] ^= state_[2];
    state_[0] ^= state_[3];
    state_[2] ^= shifted;
    state_[3] = std::rotl(state_[3], 45);
    return result;
  }

  // Each of 0..limit-1 with the same probability; `limit` is at least 1.
  std::uint32_t Below(std::uint32_t limit) {
    std::uint64_t product = (Next() >> 32) * limit;
    if (static_cast<std::uint32_t>(product) < limit) {
      const std::uint32_t unfair = (0U - limit) % limit;
      while (static_cast<std::uint32_t>(product) < unfair) product = (Next() >> 32) * limit;
    }
    return static_cast<std::uint32_t>(product >> 32);
  }

  // Uniform in [0, 1), in steps of 2^-53.
  double Fraction() { return static_cast<double>(Next() >> 11) * 0x1p-53; }

 private:
  static constexpr std::uint64_t kStep = 0x9E3779B97F4A7C15;

  static std::uint64_t Scramble(std::uint64_t bits) {
    bits = (bits ^ (bits >> 30)) * 0xBF58476D1CE4E5B9;
    bits = (bits ^ (bits >> 27)) * 0x94D049BB133111EB;
    return bits ^ (bits >> 31);
  }

  std::array<std::uint64_t, 4> state_;
};

}  // namespace zentavo
