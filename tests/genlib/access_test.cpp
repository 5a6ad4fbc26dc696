#include "zentavo/genlib/access.h"

#include <gtest/gtest.h>

#include "zentavo/framework/memory_data_set.h"

namespace zentavo {
namespace {

TEST(HasAccess, ReadsAccessTexts) {
  for (const StringView text : {u"A", u"U5,B", u"G3", u"G03", u"U12,U5;G9", u"U4;G3", u"U1 5",
                                u"U4,5", u"UG3", u"GU5", u"U4;A"}) {
    EXPECT_TRUE(HasAccess(5, 3, text, false)) << ToUtf8(text);
  }
  for (const StringView text : {u"B", u"B,U5", u"G0", u"5,U7", u"U3;G5", u"u5", u"U5 ,", u"U51",
                                u"U6B", u"G3U", u"x", u"U4294967301", u"U18446744073709551621"}) {
    EXPECT_FALSE(HasAccess(5, 3, text, false)) << ToUtf8(text);
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
  Documents other(false);
  other.data.SetName(u"OTHER");  // so there is no access field
  FilterUserAccess(5, 3, other.data);
  InactiveUserAccess(5, 3, other.data);
  EXPECT_EQ(other.All(u"ID"), u"1234567");
}

TEST(InactiveUserAccess, MarksActiveRecordsOrDeletesWithoutTheFlag) {
  Documents flagged(true);
  InactiveUserAccess(5, 3, flagged.data);
  EXPECT_EQ(flagged.All(u"ISACTIVE"), u"0112210");
  Documents documents(false);
  InactiveUserAccess(5, 3, documents.data);
  EXPECT_EQ(documents.All(u"ID"), u"2356");
}

}  // namespace
}  // namespace zentavo
