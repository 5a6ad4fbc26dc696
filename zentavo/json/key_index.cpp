#include "zentavo/json/key_index.h"

#include <bit>
#include <cstring>

namespace zentavo::json_internal {

namespace {

constexpr std::uint64_t kMultiplier = 0x9E3779B97F4A7C15u;

// Upper case of four units at once; all must be ASCII.
std::uint64_t UpperFour(std::uint64_t units) {
  constexpr std::uint64_t kOnes = 0x0001000100010001u;
  const std::uint64_t from_a = units + kOnes * (0x80 - u'a');   // bit 7: at least 'a'
  const std::uint64_t above_z = units + kOnes * (0x7F - u'z');  // bit 7: above 'z'
  return units - (((from_a & ~above_z) & (kOnes * 0x80)) >> 2);
}

std::uint64_t FourUpperUnits(const char16_t* units) {
  std::uint64_t four;
  std::memcpy(&four, units, sizeof four);
  if ((four & 0xFF80FF80FF80FF80u) == 0) return UpperFour(four);
  char16_t upper[4];
  for (int index = 0; index < 4; ++index) upper[index] = UpperUnit(units[index]);
  std::memcpy(&four, upper, sizeof four);
  return four;
}

std::uint64_t Mix(std::uint64_t hash, std::uint64_t value) {
  hash = (hash ^ value) * kMultiplier;
  return hash ^ (hash >> 32);
}

}  // namespace

// The seed differs from object to object, so that no text can be made whose keys all collide.
KeyIndex::KeyIndex(const Storage& storage)
    : seed_(Mix(reinterpret_cast<std::uintptr_t>(this),
                reinterpret_cast<std::uintptr_t>(storage.All().First()))) {
  Build(storage);
}

void KeyIndex::Build(const Storage& storage) {
  entries_.assign(std::bit_ceil(std::size_t{storage.Count()} * 2 + 16), Entry{0, 0});
  for (std::uint32_t position = 0; position < storage.Count(); ++position) Add(position, storage);
}

std::uint64_t KeyIndex::Hash(StringView key) const {
  std::uint64_t hash = seed_ + key.size();
  std::size_t index = 0;
  for (; index + 4 <= key.size(); index += 4) hash = Mix(hash, FourUpperUnits(key.data() + index));
  std::uint64_t rest = 0;
  for (; index < key.size(); ++index) rest = (rest << 16) | UpperUnit(key[index]);
  return Mix(hash, rest);
}

std::size_t KeyIndex::Probe(StringView key, std::uint64_t hash, const Storage& storage) const {
  const std::size_t mask = entries_.size() - 1;
  const auto tag = static_cast<std::uint32_t>(hash >> 32);
  for (std::size_t place = static_cast<std::size_t>(hash) & mask;; place = (place + 1) & mask) {
    const Entry& entry = entries_[place];
    if (entry.place == 0) return place;
    if (entry.tag == tag && KeyMatches(storage.Key(entry.place - 1), key)) return place;
  }
}

void KeyIndex::Add(std::uint32_t position, const Storage& storage) {
  const StringView key = storage.Key(position);
  const std::uint64_t hash = Hash(key);
  Entry& entry = entries_[Probe(key, hash, storage)];
  if (entry.place == 0) entry = {static_cast<std::uint32_t>(hash >> 32), position + 1};
}

void KeyIndex::AddLast(const Storage& storage) {
  if (std::size_t{storage.Count()} * 2 > entries_.size()) {
    Build(storage);
  } else {
    Add(storage.Count() - 1, storage);
  }
}

std::optional<std::uint32_t> KeyIndex::Find(StringView key, const Storage& storage) const {
  const Entry& entry = entries_[Probe(key, Hash(key), storage)];
  if (entry.place == 0) return std::nullopt;
  return entry.place - 1;
}

}  // namespace zentavo::json_internal
