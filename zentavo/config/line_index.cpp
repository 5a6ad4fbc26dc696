#include "zentavo/config/line_index.h"

#include <algorithm>
#include <random>
#include <utility>

#include "zentavo/config/key_words.h"
#include "zentavo/framework/mix_bits.h"
#include "zentavo/framework/text_hash.h"

namespace zentavo {

namespace {

constexpr std::size_t kLeastSlots = 8;

std::uint64_t SeedOfThisRun() {
  static const std::uint64_t seed = [] {
    std::random_device random;
    return std::uint64_t{random()} << 32 | random();
  }();
  return seed;
}

}  // namespace

inline std::uint32_t LineIndex::HashOf(StringView key) const {
  const std::uint64_t hash = key_case_ == KeyCase::kIgnored
                                 ? key_words::HashIgnoringCase(seed_, key)
                                 : text_hash::Hash(seed_, key);
  return static_cast<std::uint32_t>(MixBits(hash) >> 32);
}

inline bool LineIndex::SameKey(StringView a, StringView b) const {
  return key_words::AreEqual(a, b) || (key_case_ == KeyCase::kIgnored && SameText(a, b));
}

// The slot of the key, or the free one where it belongs.
inline std::size_t LineIndex::PlaceOf(std::uint32_t hash, StringView key) const {
  std::size_t place = FirstPlace(hash);
  for (;; place = Behind(place)) {
    const Entry& entry = slots_[place];
    if (entry.line == kNoLine || (entry.hash == hash && SameKey(entry.Key(), key))) return place;
  }
}

void LineIndex::SetSlots(std::size_t count) {
  slots_.assign(count, Entry());
  slot_count_ = count;
}

void LineIndex::Reset(std::size_t lines, KeyCase key_case) {
  SetSlots(kLeastSlots + lines + lines / 2);
  used_ = 0;
  seed_ = SeedOfThisRun();
  key_case_ = key_case;
}

void LineIndex::Grow() {
  const std::vector<Entry> old = std::exchange(slots_, {});
  SetSlots(std::max(kLeastSlots, old.size() * 2));
  for (const Entry& entry : old) {
    if (entry.line != kNoLine) slots_[PlaceOf(entry.hash, entry.Key())] = entry;
  }
}

void LineIndex::Add(std::int32_t line, StringView text, std::size_t key_length) {
  if (used_ * 4 >= slot_count_ * 3) Grow();
  const StringView key = text.substr(0, key_length);
  const std::uint32_t hash = HashOf(key);
  Entry& entry = slots_[PlaceOf(hash, key)];
  if (entry.line != kNoLine) return;
  entry = {hash, line, text.data(), static_cast<std::uint32_t>(key_length),
           static_cast<std::uint32_t>(text.size())};
  ++used_;
}

// Goes by the line's number: its entry's text is no longer there.
bool LineIndex::Renew(std::int32_t line, StringView old_text, StringView text,
                      std::size_t key_length) {
  const StringView key = text.substr(0, key_length);
  std::size_t place = FirstPlace(HashOf(key));
  while (slots_[place].line != kNoLine && slots_[place].line != line) place = Behind(place);
  Entry& entry = slots_[place];
  if (entry.line == kNoLine || !SameKey(old_text.substr(0, entry.key_length), key)) return false;
  entry.text = text.data();
  entry.length = static_cast<std::uint32_t>(text.size());
  return true;
}

const LineIndex::Entry* LineIndex::Find(StringView key) const {
  if (slot_count_ == 0) return nullptr;
  const Entry& entry = slots_[PlaceOf(HashOf(key), key)];
  return entry.line == kNoLine ? nullptr : &entry;
}

}  // namespace zentavo
