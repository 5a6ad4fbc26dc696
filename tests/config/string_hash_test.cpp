#include "zentavo/config/string_hash.h"

#include <gtest/gtest.h>

namespace zentavo {
namespace {

TEST(TXStringHash, HashOfRotatesByTwo) {
  EXPECT_EQ(TXStringHash::HashOf(u""), 0u);
  EXPECT_EQ(TXStringHash::HashOf(u"\u03A9"), 0x3A9u);
  EXPECT_EQ(TXStringHash::HashOf(u"AB"), 326u);
  // Sixteen more units bring the first one round to where it was, behind the bits of the others.
  String text = u"A";
  text.append(16, u'\0');
  EXPECT_EQ(TXStringHash::HashOf(text), 65u);
}

TEST(TXStringHash, TheFirstOfEqualKeysCounts) {
  TXStringHash hash(1);
  hash.Add(u"a", 1);
  hash.Add(u"b", 2);
  hash.Add(u"b", 3);
  THashItem item;
  EXPECT_EQ(hash.Find(u"b", item), 1);
  EXPECT_EQ(item.Key, u"b");
  EXPECT_EQ(item.Value, 2);
  EXPECT_EQ(hash.Find(u"B", item), -1);
  EXPECT_TRUE(hash.Modify(u"b", 7));
  EXPECT_EQ(hash.ValueOf(u"b"), 7);
  hash.Remove(u"b");
  EXPECT_EQ(hash.ValueOf(u"b"), 3);
  hash.Remove(u"c");
  EXPECT_FALSE(hash.Modify(u"c", 1));
  hash.Clear();
  EXPECT_EQ(hash.ValueOf(u"a"), -1);
  EXPECT_EQ(hash.BucketCount(), 1u);
  EXPECT_EQ(TXStringHash(0).BucketCount(), 1u);
}

}  // namespace
}  // namespace zentavo
