#include "zentavo/genlib/access.h"

#include <gtest/gtest.h>

#include "zentavo/framework/memory_data_set.h"

namespace zentavo {
namespace {

TEST(HasAccess, ReadsAccessTexts) {
  constexpr struct {
    const char16_t* text;
    bool user5_group3;
  } kRows[] = {
      {u"A", true},
      {u"B", false},
      {u"U5,B", true},
      {u"B,U5", false},
      {u"G3", true},
      {u"G03", true},
      {u"G0", false},
      {u"5,U7", false},
      {u"U12,U5;G9", true},
      {u"U4;G3", true},
      {u"U3;G5", false},
      {u"u5", false},
      {u"U1 5", true},
      {u"U5 ,", false},
      {u"U51", false},
      {u"U6B", false},
      {u"U4,5", true},
      {u"UG3", true},
      {u"GU5", true},
      {u"G3U", false},
      {u"x", false},
      {u"U4294967301", false},
      {u"U18446744073709551621", false},
      {u"U4;A", true},
  };
  for (const auto& row : kRows) {
    EXPECT_EQ(HasAccess(5, 3, row.text, false), row.user5_group3) << ToUtf8(row.text);
  }
}

TEST(HasAccess, GoesByTheDefaultWithoutAText) {
  EXPECT_TRUE(HasAccess(1, 1, u"", true));
  EXPECT_FALSE(HasAccess(1, 1, u"", false));
  EXPECT_FALSE(HasAccess(0, 0, u"U0,G0", true));
}

// Documents with access texts; ISACTIVE is there when asked for.
class Documents {
 public:
  explicit Documents(bool with_active) {
    data.AddField(u"ID", TFieldType::ftInteger);
    data.AddField(u"DOCACCESS", TFieldType::ftString);
    if (with_active) data.AddField(u"ISACTIVE", TFieldType::ftInteger);
    data.Open();
    std::int32_t id = 0;
    for (const char16_t* access : {u"B", u"U5", u"", u"U6", u"A", u"G3", u"G4"}) {
      data.Append();
      data.FieldByName(u"ID").SetAsInteger(++id);
      data.FieldByName(u"DOCACCESS").SetAsString(access);
      if (with_active) data.FieldByName(u"ISACTIVE").SetAsInteger(id == 4 || id == 5 ? 2 : 1);
      data.Post();
    }
  }
  String All(StringView field) {
    String all;
    for (data.First(); !data.Eof(); data.Next()) all += data.FieldByName(field).AsString();
    return all;
  }
  TMemoryDataSet data{u"DOC"};
};

TEST(FilterUserAccess, DeletesWhatTheUserMayNotSee) {
  Documents documents(false);
  FilterUserAccess(5, 3, documents.data);
  EXPECT_EQ(documents.All(u"ID"), u"2356");
  FilterUserAccess(6, 9, documents.data);
  EXPECT_EQ(documents.All(u"ID"), u"35");
}

TEST(FilterUserAccess, NeedsTheAccessField) {
  Documents documents(false);
  documents.data.SetName(u"OTHER");
  FilterUserAccess(5, 3, documents.data);
  InactiveUserAccess(5, 3, documents.data);
  EXPECT_EQ(documents.All(u"ID"), u"1234567");
}

TEST(InactiveUserAccess, MarksActiveRecords) {
  Documents documents(true);
  InactiveUserAccess(5, 3, documents.data);
  EXPECT_EQ(documents.All(u"ISACTIVE"), u"0112210");
}

TEST(InactiveUserAccess, DeletesWithoutTheFlag) {
  Documents documents(false);
  InactiveUserAccess(5, 3, documents.data);
  EXPECT_EQ(documents.All(u"ID"), u"2356");
}

}  // namespace
}  // namespace zentavo
