// The positions of an object's keys, found without regard to case: internal to the JSON classes.
#pragma once

#include <cstdint>
#include <cstring>
#include <optional>
#include <vector>

#include "zentavo/framework/text.h"
#include "zentavo/json/storage.h"

namespace zentavo::json_internal {

// Whether two keys are the same, without regard to case.
inline bool KeyMatches(StringView a, StringView b) {
  return a.size() == b.size() &&
         (std::memcmp(a.data(), b.data(), a.size() * sizeof(char16_t)) == 0 || SameText(a, b));
}

// Knows the first position of each key of the storage it was built for.
class KeyIndex {
 public:
  explicit KeyIndex(const Storage& storage);

  std::optional<std::uint32_t> Find(StringView key, const Storage& storage) const;
  // The storage's last key has been added.
  void AddLast(const Storage& storage);

 private:
  struct Entry {
    std::uint32_t tag;
    std::uint32_t place;  // position + 1; 0: free
  };

  std::uint64_t Hash(StringView key) const;
  // Where `key` is or belongs.
  std::size_t Probe(StringView key, std::uint64_t hash, const Storage& storage) const;
  void Add(std::uint32_t position, const Storage& storage);
  void Build(const Storage& storage);

  std::vector<Entry> entries_;  // a power of two, at most half of it used
  std::uint64_t seed_;
};

}  // namespace zentavo::json_internal
