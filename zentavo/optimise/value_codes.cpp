#include "zentavo/optimise/value_codes.h"

#include <algorithm>
#include <cstring>

namespace zentavo::optimise_internal {

namespace {

// Few values stay in the near caches, many are moved seldom.
constexpr std::size_t kGrowth = 16;

}  // namespace

ValueCodes::ValueCodes(std::size_t most)
    : slots_(std::min(kFirstSlots, std::bit_ceil(most * 2 + 1))),
      mask_(static_cast<std::uint32_t>(slots_.size() - 1)),
      most_slots_(std::bit_ceil(most * 2 + 1)) {}

bool ValueCodes::SameText(const Key& kept, const ValueKey& key) {
  if (!key.IsText() || kept.text == nullptr || kept.text == &ValueKey::kReal) return false;
  const auto units = static_cast<std::size_t>(kept.bits >> 32);
  return std::memcmp(kept.text, key.text_, units * sizeof(char16_t)) == 0;
}

std::uint32_t ValueCodes::HashOf(const Key& key) {
  const bool is_text = key.text != nullptr && key.text != &ValueKey::kReal;
  return is_text ? static_cast<std::uint32_t>(key.bits) : ValueKey::HashOf(key.bits);
}

void ValueCodes::Add(const ValueKey& key, std::uint32_t& slot) {
  keys_.push_back({key.bits_, key.text_});
  slot = (key.hash_ & ~mask_) | static_cast<std::uint32_t>(keys_.size());
}

void ValueCodes::Grow() {
  slots_.assign(std::min(slots_.size() * kGrowth, most_slots_), 0);
  mask_ = static_cast<std::uint32_t>(slots_.size() - 1);
  keys_.reserve(slots_.size() / 2);
  for (std::size_t i = 0; i < keys_.size(); ++i) {
    const std::uint32_t hash = HashOf(keys_[i]);
    std::size_t at = hash & mask_;
    while (slots_[at] != 0) at = (at + 1) & mask_;
    slots_[at] = (hash & ~mask_) | static_cast<std::uint32_t>(i + 1);
  }
}

}  // namespace zentavo::optimise_internal
