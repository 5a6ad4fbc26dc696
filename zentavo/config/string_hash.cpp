#include "zentavo/config/string_hash.h"

#include <algorithm>
#include <bit>

namespace zentavo {

TXStringHash::TXStringHash(std::uint32_t Size) : Buckets(std::max<std::uint32_t>(Size, 1)) {}

std::uint32_t TXStringHash::HashOf(StringView Key) {
  std::uint32_t hash = 0;
  for (const char16_t unit : Key) hash = std::rotl(hash, 2) ^ unit;
  return hash;
}

std::size_t TXStringHash::PlaceOf(StringView Key, const Bucket& bucket) {
  const auto place = std::find_if(bucket.begin(), bucket.end(),
                                  [Key](const THashItem& item) { return item.Key == Key; });
  return static_cast<std::size_t>(place - bucket.begin());
}

void TXStringHash::Add(StringView Key, std::int32_t Value) {
  Buckets[BucketOf(Key)].push_back({String(Key), Value});
}

std::int32_t TXStringHash::Find(StringView Key, THashItem& Item) const {
  const Bucket& bucket = Buckets[BucketOf(Key)];
  const std::size_t place = PlaceOf(Key, bucket);
  if (place == bucket.size()) return -1;
  Item = bucket[place];
  return static_cast<std::int32_t>(place);
}

std::int32_t TXStringHash::ValueOf(StringView Key) const {
  const Bucket& bucket = Buckets[BucketOf(Key)];
  const std::size_t place = PlaceOf(Key, bucket);
  return place == bucket.size() ? -1 : bucket[place].Value;
}

bool TXStringHash::Modify(StringView Key, std::int32_t Value) {
  Bucket& bucket = Buckets[BucketOf(Key)];
  const std::size_t place = PlaceOf(Key, bucket);
  if (place == bucket.size()) return false;
  bucket[place].Value = Value;
  return true;
}

void TXStringHash::Remove(StringView Key) {
  Bucket& bucket = Buckets[BucketOf(Key)];
  const std::size_t place = PlaceOf(Key, bucket);
  if (place < bucket.size()) bucket.erase(bucket.begin() + static_cast<std::ptrdiff_t>(place));
}

void TXStringHash::Clear() {
  for (Bucket& bucket : Buckets) bucket.clear();
}

}  // namespace zentavo
