// A hash table of texts and numbers with a fixed number of buckets.
//
//   TXStringHash hash(256);
//   hash.Add(u"Path", 3);
//   hash.ValueOf(u"Path");  // 3
//   hash.ValueOf(u"PATH");  // -1: keys compare exactly
//
// A table is used by one thread at a time. A look-up costs the length of its bucket.
#pragma once

#include <cstdint>
#include <vector>

#include "zentavo/framework/object.h"
#include "zentavo/framework/text.h"

namespace zentavo {

struct THashItem {
  String Key;
  std::int32_t Value = 0;
};

class ZENTAVO_API TXStringHash : public TObject {
 public:
  // `Size` buckets; 0 counts 1.
  explicit TXStringHash(std::uint32_t Size = 256);

  // Appends an item to the bucket of its key; a key that is there already stays in front of it.
  void Add(StringView Key, std::int32_t Value);
  // The place of the first item with that key in its bucket, from 0, and a copy of the item; -1
  // when there is none, and `Item` stays as it was.
  std::int32_t Find(StringView Key, THashItem& Item) const;
  // The value of the first item with that key, -1 when there is none.
  std::int32_t ValueOf(StringView Key) const;
  // Changes the first item with that key; false when there is none.
  bool Modify(StringView Key, std::int32_t Value);
  // Deletes the first item with that key, if there is one.
  void Remove(StringView Key);
  void Clear();  // keeps the number of buckets

  // For each unit: rotated left by two bits, then exclusive-or with the unit; 0 for the empty key.
  static std::uint32_t HashOf(StringView Key);

  std::uint32_t BucketCount() const { return static_cast<std::uint32_t>(Buckets.size()); }

 private:
  using Bucket = std::vector<THashItem>;

  std::size_t BucketOf(StringView Key) const { return HashOf(Key) % Buckets.size(); }
  // The first item with that key in `bucket`, its size when there is none.
  static std::size_t PlaceOf(StringView Key, const Bucket& bucket);

  std::vector<Bucket> Buckets;
};

}  // namespace zentavo
