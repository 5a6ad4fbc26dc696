#include "zentavo/config/line_index.h"

#include <bit>
#include <random>
#include <utility>

namespace zentavo {

namespace {

constexpr std::size_t kLeastSlots = 8;

std::uint64_t Seed() {
  static const std::uint64_t seed = [] {
    std::random_device random;
    return std::uint64_t{random()} << 32 | random();
  }();
  return seed;
}

template <typename Prepare>
std::uint32_t HashOf(StringView key, Prepare prepare) {
  constexpr std::uint64_t kOdd = 0x9E3779B97F4A7C15;  // 2^64 divided by the golden ratio
  std::uint64_t hash = Seed();
  for (const char16_t unit : key) hash = (std::rotl(hash, 32) ^ prepare(unit)) * kOdd;
  return static_cast<std::uint32_t>(hash >> 32);
}

}  // namespace

std::uint32_t KeyHash(StringView key, KeyCase key_case) {
  if (key_case == KeyCase::kIgnored) return HashOf(key, UpperUnit);
  return HashOf(key, [](char16_t unit) { return unit; });
}

void LineIndex::Reset(std::size_t lines) {
  slots_.assign(std::bit_ceil(kLeastSlots + lines + lines / 2), Slot());
  used_ = 0;
}

void LineIndex::Grow() {
  const std::vector<Slot> old = std::exchange(slots_, {});
  slots_.resize(old.empty() ? kLeastSlots : old.size() * 2);
  for (const Slot& slot : old) {
    // No two of them have the same key.
    if (slot.line != kFree) slots_[PlaceOf(slot.hash, [](std::int32_t) { return false; })] = slot;
  }
}

}  // namespace zentavo
