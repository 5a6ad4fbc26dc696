#include "zentavo/framework/field.h"

#include <gtest/gtest.h>

#include "tests/support/error_of.h"
#include "tests/support/thread_settings.h"
#include "zentavo/framework/memory_data_set.h"
#include "zentavo/framework/stream.h"
#include "zentavo/framework/variant_operators.h"

namespace zentavo {
namespace {

using enum TFieldType;

// A record being inserted, with one field.
struct OneField {
  explicit OneField(TFieldType type, std::int32_t size = 0)
      : field(data.AddField(u"F", type, size)) {
    data.Open();
    data.Append();
  }
  TMemoryDataSet data{u"T"};
  TField& field;
};

TEST(TField, KeepsValuesByType) {
  struct Row {
    TFieldType type;
    Variant value, kept;
    const char16_t* text;
  };
  const testing::ThreadSettings scope(testing::CommaSettings());
  for (const Row& row :
       {Row{ftString, u"Αθήνα", u"Αθήνα", u"Αθήνα"}, Row{ftInteger, u"42", 42, u"42"},
        Row{ftInteger, 2.5, 2, u"2"},
        Row{ftLargeint, INT64_MIN, INT64_MIN, u"-9223372036854775808"},
        Row{ftFloat, 1.5, 1.5, u"1,5"},
        Row{ftCurrency, 2.00005, Variant::CurrencyUnits(20001), u"2,0001"},
        Row{ftBCD, u"12345678901234567890.12", u"12345678901234567890.12",
            u"12345678901234567890,12"},
        Row{ftBCD, Variant::CurrencyUnits(-1050), u"-0.105", u"-0,105"},
        Row{ftBoolean, 7, true, u"True"},
        Row{ftDate, Variant::Date(1), Variant::Date(1), u"31.12.1899"},
        Row{ftDateTime, Variant::Date(1.5), Variant::Date(1.5), u"31.12.1899 12:00:00"},
        Row{ftMemo, u"", u"", u""},
        Row{ftBlob, u"ab", Variant::ByteArray{std::byte{'a'}, std::byte{'b'}}, u"ab"}}) {
    OneField record(row.type);
    record.field.SetValue(row.value);
    EXPECT_TRUE(record.field.Value() == row.kept) << ToUtf8(row.text);
    EXPECT_EQ(record.field.AsString(), row.text);
    record.data.Post();
    record.data.Edit();
    record.field.SetAsString(record.field.AsString());
    EXPECT_TRUE(record.field.Value() == row.kept) << ToUtf8(row.text);
    record.field.SetValue(Variant());
    EXPECT_TRUE(record.field.IsNull());
  }
}

TEST(TField, TypedGettersOfNullGiveZero) {
  OneField record(ftFloat);
  EXPECT_EQ(record.field.AsFloat() + record.field.AsDateTime(), 0);
  EXPECT_EQ(record.field.AsInteger() + record.field.AsInt64(), 0);
  EXPECT_FALSE(record.field.AsBoolean());
  EXPECT_EQ(record.field.AsString(), u"");
}

TEST(TField, RefusesValuesAndKeepsTheOldOne) {
  OneField record(ftInteger);
  record.field.SetAsInteger(1);
  EXPECT_THROW(record.field.SetValue(u"x"), EVariantTypeCastError);
  EXPECT_THROW(record.field.SetAsString(u"x"), EConvertError);
  EXPECT_THROW(record.field.SetAsFloat(1e30), ERangeError);
  EXPECT_EQ(record.field.AsInteger(), 1);
  OneField text(ftString, 3);
  EXPECT_EQ(testing::ErrorOf<EDatabaseError>([&] { text.field.SetAsString(u"abcd"); }),
            "Field 'F' holds at most 3 characters");
  text.field.SetReadOnly(true);
  EXPECT_EQ(testing::ErrorOf<EDatabaseError>([&] { text.field.SetAsString(u"abc"); }),
            "Field 'F' cannot be modified");
}

TEST(TField, AValidatorThatRaisesKeepsTheOldValue) {
  OneField record(ftInteger);
  record.field.SetAsInteger(1);
  int changes = 0;
  record.field.SetOnValidate([](TField& field) {
    if (field.AsInteger() > 9) Abort();
  });
  record.field.SetOnChange([&](TField&) { ++changes; });
  EXPECT_THROW(record.field.SetAsInteger(10), EAbort);
  EXPECT_EQ(record.field.AsInteger(), 1);
  record.field.SetAsInteger(9);
  EXPECT_EQ(changes, 1);
}

TEST(TField, StreamsBlobs) {
  OneField record(ftBlob);
  TMemoryStream in;
  in.WriteBuffer("a\0\xFF", 3);
  in.SetPosition(0);
  record.field.LoadFromStream(in);
  TMemoryStream out;
  record.field.SaveToStream(out);
  EXPECT_TRUE(
      std::equal(out.Bytes().begin(), out.Bytes().end(), in.Bytes().begin(), in.Bytes().end()));
}

}  // namespace
}  // namespace zentavo
