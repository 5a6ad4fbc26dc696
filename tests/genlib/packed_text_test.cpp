#include "zentavo/genlib/packed_text.h"

#include <gtest/gtest.h>

#include <random>

#include "support/thread_settings.h"
#include "zentavo/framework/memory_data_set.h"
#include "zentavo/framework/number_text.h"

namespace zentavo {
namespace {

TEST(CompressField, EscapesAndWritesPoints) {
  EXPECT_EQ(CompressField(u"a|b~c\\", false), u"a\\|b\\~c\\\\");
  EXPECT_EQ(CompressField(u"1.5", true), u"1.5");
  const testing::ThreadSettings scope(testing::CommaSettings());
  EXPECT_EQ(CompressField(u"1,5", true), u"1.5");
  EXPECT_EQ(CompressField(u"1,5|", true), u"1.5\\|");
  EXPECT_EQ(CompressField(u"1,5", false), u"1,5");
  EXPECT_EQ(CheckCompressedFloat(u"-1.5E+3", true), u"-1,5E+3");
  EXPECT_EQ(CheckCompressedFloat(u"1.5", false), u"1.5");
}

TEST(ExtractCompressed, ReadsValuesAndRecords) {
  struct Row {
    const char16_t* text;
    std::int32_t position;
    char16_t terminator;
    const char16_t* value;
    std::int32_t behind;
  };
  for (const Row& row :
       {Row{u"a\\|b|c", 1, u'|', u"a|b", 6}, Row{u"a\\|b|c", 6, u'|', u"c", 7},
        Row{u"a\\|b|~c", 1, u'~', u"a\\|b|", 7}, Row{u"a\\~b|~", 1, u'~', u"a\\", 4},
        Row{u"a\\~b|", 1, u'|', u"a~b", 6}, Row{u"a\\", 1, u'|', u"a", 3},
        Row{u"a\\\\|", 1, u'|', u"a\\", 5}, Row{u"abc", 9, u'|', u"", 9},
        Row{u"abc", 4, u'|', u"", 4}, Row{u"abc", 0, u'|', u"", 0}}) {
    std::int32_t position = row.position;
    EXPECT_EQ(ExtractCompressed(row.text, position, row.terminator), row.value) << ToUtf8(row.text);
    EXPECT_EQ(position, row.behind) << ToUtf8(row.text);
  }
}

TEST(ExtractRecord, BringsEveryPackedValueBack) {
  std::mt19937 random(31);  // NOLINT(bugprone-random-generator-seed): the same cases each time
  for (int run = 0; run < 2000; ++run) {
    TMemoryDataSet data(u"T");
    std::vector<std::vector<String>> records(random() % 4);
    const int fields = static_cast<int>(random() % 4) + 1;
    for (int i = 0; i < fields; ++i) data.AddField(u"F" + IntToStr(i), TFieldType::ftString);
    data.Open();
    for (auto& record : records) {
      data.Append();
      for (int i = 0; i < fields; ++i) {
        for (std::size_t length = random() % 6; length > 0; --length) {
          record.resize(static_cast<std::size_t>(i) + 1);
          record.back() += u"|~\\aΩ"[random() % 5];
        }
        record.resize(static_cast<std::size_t>(i) + 1);
        data.Fields(i).SetAsString(record.back());
      }
      data.Post();
    }
    const String packed = CompressDataSet(data);
    std::int32_t position = 1;
    std::vector<String> values;
    for (const auto& record : records) {
      ASSERT_TRUE(ExtractRecord(packed, position, values)) << ToUtf8(packed);
      EXPECT_EQ(values, record) << ToUtf8(packed);
    }
    EXPECT_FALSE(ExtractRecord(packed, position, values));
  }
}

TEST(ExtractRecord, ReadsTextsCutAnywhere) {
  constexpr StringView kPacked = u"a\\||b|~c\\~|d|~";
  for (std::size_t length = 0; length <= kPacked.size(); ++length) {
    std::int32_t position = 1;
    std::vector<String> values;
    int records = 0;
    while (ExtractRecord(kPacked.substr(0, length), position, values)) ++records;
    EXPECT_EQ(records, length == 0 ? 0 : length <= 7 ? 1 : 2) << length;
  }
}

TEST(CompressDataSet, PacksRecords) {
  const testing::ThreadSettings invariant{TFormatSettings()};
  TMemoryDataSet data(u"T");
  TField& number = data.AddField(u"N", TFieldType::ftFloat);
  TField& text = data.AddField(u"S", TFieldType::ftString);
  TField& date = data.AddField(u"D", TFieldType::ftDateTime);
  TField& amount = data.AddField(u"A", TFieldType::ftBCD);
  data.Open();
  EXPECT_EQ(CompressDataSet(data), u"");
  data.Append();
  number.SetAsFloat(1.5);
  text.SetAsString(u"a|b~\\");
  date.SetAsDateTime(EncodeDate(2024, 2, 29) + 0.75);
  amount.SetValue(u"2.50");
  data.Post();
  data.Append();
  data.Post();
  EXPECT_EQ(CompressDataSet(data), u"1.5|a\\|b\\~\\\\|2024-02-29|2.50|~||||~");
  EXPECT_TRUE(data.Bof());
  EXPECT_FALSE(data.ControlsDisabled());
  const testing::ThreadSettings comma(testing::CommaSettings());
  EXPECT_TRUE(CompressDataSet(data).starts_with(u"1.5|"));
  EXPECT_TRUE(CompressDataSet(data).ends_with(u"|2,50|~||||~"));
}

}  // namespace
}  // namespace zentavo
