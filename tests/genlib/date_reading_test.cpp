#include "zentavo/genlib/date_reading.h"

#include <gtest/gtest.h>

#include <vector>

#include "support/thread_settings.h"
#include "tests/support/error_of.h"
#include "zentavo/framework/exception.h"

namespace zentavo {
namespace {

TFormatSettings WithFormat(StringView format) {
  TFormatSettings settings;
  settings.ShortDateFormat = format;
  return settings;
}

TEST(StringToDate, FollowsTheOrderOfTheThread) {
  const TDateTime date = EncodeDate(2021, 3, 4);
  const TDateTime this_year = EncodeDate(DecodeDate(Date()).year, 3, 4);
  struct Row {
    TDateTime value;
    StringView format;
    std::vector<StringView> texts;
  };
  for (const Row& row :
       {Row{date,
            u"dd/mm/yyyy",
            {u"2021-03-04", u"2021.03.04", u"4.3.2021", u"4-3-21", u"4 3 2021", u"04. 03. 2021",
             u"04032021", u"2021-03-04 23:59", u"2021-03-04T10:20:30.5"}},
        Row{date, u"mm/dd/yyyy", {u" 2021-3-4 ", u"3/4.2021", u"030421", u"3/4/2021 1:05 PM"}},
        Row{date, u"yyyy-mm-dd", {u"21/3/4", u"20210304"}},
        Row{this_year, u"dd/mm/yyyy", {u"4/3", u"4.3.", u"4 3 10:20"}},
        Row{this_year, u"yyyy-mm-dd", {u"3-4"}},
        Row{date, u"d-mmm-yyyy", {u"4-Mar-2021", u"4-March-2021 10:20"}},
        Row{0, u"dd/mm/yyyy", {u"", u" \t"}}}) {
    const testing::ThreadSettings scope(WithFormat(row.format));
    for (const StringView text : row.texts) {
      EXPECT_EQ(StringToDate(text), row.value) << ToUtf8(text);
    }
  }
}

TEST(StringToDate, ReadsATimeWithTheDatesSeparator) {
  TFormatSettings settings = testing::CommaSettings();
  settings.TimeSeparator = u'.';
  const testing::ThreadSettings scope(settings);
  EXPECT_EQ(StringToDate(u"04.03.2021 18.00.00"), EncodeDate(2021, 3, 4));
  EXPECT_EQ(StringToDate(u"04.03.2021 18:00"), EncodeDate(2021, 3, 4));
  EXPECT_THROW(StringToDate(u"04.03.2021 18.60.00"), EConvertError);
}

TEST(StringToDate, RaisesForWhatIsNoDate) {
  const testing::ThreadSettings scope(WithFormat(u"dd/mm/yyyy"));
  for (const char16_t* text :
       {u"x", u"2021", u"31/2/2021", u"4//3/2021", u"4/3/2021/5", u"/4/3/2021", u"4/3/2021 x",
        u"4/3/2021 25:00", u"4/3/2021 10", u"10:20", u"T10:20", u"2021-03-04T", u"4/3/20211",
        u"4032021", u"32132021", u"2021-13-01", u"4_3_2021"}) {
    EXPECT_EQ(testing::ErrorOf<EConvertError>([&] { StringToDate(text); }),
              testing::Quoted(ToUtf8(text)) + " is not a valid date");
  }
}

}  // namespace
}  // namespace zentavo
