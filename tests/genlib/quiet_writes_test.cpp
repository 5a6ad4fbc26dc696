#include "zentavo/genlib/quiet_writes.h"

#include <gtest/gtest.h>

#include "zentavo/framework/memory_data_set.h"

namespace zentavo {
namespace {

struct Table {
  Table() {
    data.Open();
    data.Append();
    amount.SetAsFloat(1);
    data.Post();
  }
  TMemoryDataSet data{u"T"};
  TField& amount = data.AddField(u"AMOUNT", TFieldType::ftFloat);
};

TEST(ZentavoPost, KeepsPostEventsQuietAndPutsThemBack) {
  Table t;
  int heard = 0;
  t.data.SetBeforePost([&](TDataSet&) { ++heard; });
  t.data.SetAfterPost([&](TDataSet&) { ++heard; });
  t.data.Edit();
  t.amount.SetAsFloat(2);
  ZentavoPost(t.data);
  EXPECT_EQ(t.data.State(), TDataSetState::dsBrowse);
  EXPECT_EQ(heard, 0);
  t.data.Edit();
  t.amount.SetRequired(true);
  t.amount.Clear();
  EXPECT_THROW(ZentavoPost(t.data), EDatabaseError);
  t.amount.SetAsFloat(3);
  t.data.Post();
  EXPECT_EQ(heard, 2);
}

TEST(ZentavoSetField, WritesOnlyWhatDiffers) {
  Table t;
  int heard = 0;
  t.amount.SetOnValidate([&](TField&) { ++heard; });
  t.amount.SetOnChange([&](TField&) { ++heard; });
  t.data.Edit();
  ZentavoSetField(t.amount, 1.0);
  EXPECT_FALSE(t.data.Modified());
  ZentavoSetField(t.amount, 2.0);
  EXPECT_TRUE(t.data.Modified());
  EXPECT_THROW(ZentavoSetField(t.amount, u"x"), Exception);
  EXPECT_EQ(heard, 0);
  t.amount.SetAsFloat(3);
  EXPECT_EQ(heard, 2);
}

TEST(ZentavoSetFloat, WritesZeroAsNull) {
  Table t;
  t.data.Edit();
  ZentavoSetFloat(t.amount, 1e-10);
  EXPECT_TRUE(t.amount.IsNull());
  ZentavoSetFloat(t.amount, 1e-8);
  EXPECT_EQ(t.amount.AsFloat(), 1e-8);
}

}  // namespace
}  // namespace zentavo
