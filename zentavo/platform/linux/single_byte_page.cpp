#include "zentavo/platform/linux/single_byte_page.h"

#include <algorithm>

namespace zentavo::platform {

namespace {

constexpr char16_t kReplacement = u'\uFFFD';

char16_t WithoutPrivateUse(char16_t unit) {
  return unit >= 0xE000 && unit <= 0xF8FF ? kReplacement : unit;
}

}  // namespace

SingleBytePage::SingleBytePage(const Units& units, std::span<const BestFit> best_fits)
    : units_(units), blocks_(1) {
  blocks_[0].fill(u'?');
  std::transform(units.begin(), units.end(), replaced_units_.begin(), WithoutPrivateUse);
  for (const BestFit& fit : best_fits) SetPlace(fit.unit, fit.byte);
  for (int byte = 255; byte >= 0; --byte) {
    const char16_t unit = units[static_cast<std::size_t>(byte)];
    if (unit != kReplacement) SetPlace(unit, static_cast<Place>(byte | kOwn));
  }
}

void SingleBytePage::SetPlace(char16_t unit, Place place) {
  std::uint8_t& block = block_of_[unit >> 8];
  if (block == 0) {
    block = static_cast<std::uint8_t>(blocks_.size());
    blocks_.push_back(blocks_[0]);
  }
  blocks_[block][unit & 0xFF] = place;
}

std::string SingleBytePage::Encode(std::u16string_view text, CodePageFit fit) const {
  std::string bytes(text.size(), '\0');
  char* out = bytes.data();
  if (fit == CodePageFit::kBest) {
    for (const char16_t unit : text) *out++ = static_cast<char>(PlaceOf(unit));
    return bytes;
  }
  for (const char16_t unit : text) {
    const Place place = PlaceOf(unit);
    *out++ = (place & kOwn) != 0 ? static_cast<char>(place) : '?';
  }
  return bytes;
}

std::u16string SingleBytePage::Decode(std::string_view bytes, LooseBytes loose) const {
  const Units& units = loose == LooseBytes::kKept ? units_ : replaced_units_;
  std::u16string text(bytes.size(), u'\0');
  char16_t* out = text.data();
  for (const char byte : bytes) *out++ = units[static_cast<unsigned char>(byte)];
  return text;
}

bool SingleBytePage::Fits(std::u16string_view text) const {
  constexpr std::size_t kBlock = 64;  // units between two looks at what came out
  while (!text.empty()) {
    const std::u16string_view block = text.substr(0, kBlock);
    unsigned all = kOwn;
    for (const char16_t unit : block) all &= PlaceOf(unit);
    if (all == 0) return false;
    text.remove_prefix(block.size());
  }
  return true;
}

}  // namespace zentavo::platform
