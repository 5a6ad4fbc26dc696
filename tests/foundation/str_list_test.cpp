#include "zentavo/foundation/str_list.h"

#include <gtest/gtest.h>

namespace zentavo {
namespace {

TEST(TStrList, EqualTextNotifiesNobody) {
  TComponent owner;
  TStrList& list = TStrList::Create(owner);
  ASSERT_EQ(list.Owner(), &owner);
  int changes = 0;
  list.Items().SetOnChange([&](TStringList&) { ++changes; });
  TStringList value;
  value.SetText(u"a\nb");
  list.SetItems(value);
  EXPECT_EQ(changes, 1);
  list.SetItems(value);
  EXPECT_EQ(changes, 1);
  list.SetItem(1, u"c");
  EXPECT_EQ(list.Item(1), u"c");
  EXPECT_EQ(list.Count(), 2);
}

}  // namespace
}  // namespace zentavo
