#include "zentavo/threads_memory/sorted_list.h"

#include <gtest/gtest.h>

#include <array>
#include <random>

#include "tests/support/error_of.h"

namespace zentavo {
namespace {

struct Entry {
  StringView name;
  int number;
};

class Names : public TXSortedList {
 public:
  Names()
      : TXSortedList(
            [this](void* a, void* b) {
              ++comparisons;
              return CompareStr(At(a).name, At(b).name);
            },
            [](void* item, StringView key) { return CompareStr(At(item).name, key); }) {}

  static Entry& At(void* item) { return *static_cast<Entry*>(item); }
  void KeepSorted() { FSorted = true; }

  int comparisons = 0;
};

TEST(TXSortedList, FindsTheFirstOfEqualItems) {
  Names list;
  EXPECT_EQ(list.FindItem(u"a"), nullptr);
  std::array<Entry, 6> entries = {
      {{u"b", 1}, {u"c", 2}, {u"b", 3}, {u"a", 4}, {u"b", 5}, {u"d", 6}}};
  for (Entry& entry : entries) list.Add(&entry);
  EXPECT_EQ(list.FindItem(u"b"), &entries[0]);
  EXPECT_EQ(list.FindItem(u"a"), &entries[3]);
  EXPECT_EQ(list.FindItem(u"d"), &entries[5]);
  for (const StringView missing : {u"", u"bb", u"e"}) EXPECT_EQ(list.FindItem(missing), nullptr);
}

TEST(TXSortedList, EverySearchSortsAgainUnlessADescendantKeepsTheOrder) {
  Names list;
  std::array<Entry, 3> entries = {{{u"b", 1}, {u"c", 2}, {u"a", 3}}};
  for (Entry& entry : entries) list.Add(&entry);
  EXPECT_EQ(list.FindItem(u"c"), &entries[1]);
  entries[1].name = u"0";  // sorted anew, it is found in its new place
  EXPECT_EQ(list.FindItem(u"0"), &entries[1]);
  list.KeepSorted();
  list.comparisons = 0;
  EXPECT_EQ(list.FindItem(u"b"), &entries[0]);
  EXPECT_EQ(list.comparisons, 0);
  list.Add(&entries[0]);
  EXPECT_EQ(list.FindItem(u"b"), &entries[0]);
  EXPECT_GT(list.comparisons, 0);
}

TEST(TXSortedList, ContradictoryComparisonDoesNoHarm) {
  std::mt19937 random(7);  // the seed
  TXSortedList list([&](void*, void*) { return static_cast<int>(random() % 3) - 1; },
                    [](void*, StringView) { return 1; });
  std::array<int, 100> items{};
  for (int& item : items) list.Add(&item);
  EXPECT_EQ(list.FindItem(u"x"), nullptr);
  for (const int& item : items) EXPECT_GE(list.IndexOf(&item), 0);
}

TEST(TList, ChecksItsIndices) {
  TList list;
  int one = 1;
  int two = 2;
  EXPECT_EQ(list.Add(&two), 0);
  list.Insert(0, &one);
  EXPECT_EQ(list.Remove(&one), 0);
  EXPECT_EQ(list.Remove(&list), -1);
  list.SetItem(0, &one);
  EXPECT_EQ(list[0], &one);
  EXPECT_THROW(list.Items(-1), EListError);
  EXPECT_THROW(list.Insert(2, &one), EListError);
  EXPECT_EQ(testing::ErrorOf<EListError>([&] { list.Delete(1); }), "List index out of bounds (1)");
}

}  // namespace
}  // namespace zentavo
