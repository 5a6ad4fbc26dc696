#include "zentavo/genlib/date_reading.h"

#include <gtest/gtest.h>

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
  const struct {
    const char16_t *format, *text;
    TDateTime value;
  } rows[] = {
      {u"dd/mm/yyyy", u"2021-03-04", date},
      {u"mm/dd/yyyy", u" 2021-3-4 ", date},
      {u"dd/mm/yyyy", u"2021.03.04", date},
      {u"dd/mm/yyyy", u"4.3.2021", date},
      {u"dd/mm/yyyy", u"4-3-21", date},
      {u"dd/mm/yyyy", u"4 3 2021", date},
      {u"dd/mm/yyyy", u"04. 03. 2021", date},
      {u"mm/dd/yyyy", u"3/4.2021", date},
      {u"yyyy-mm-dd", u"21/3/4", date},
      {u"dd/mm/yyyy", u"04032021", date},
      {u"mm/dd/yyyy", u"030421", date},
      {u"yyyy-mm-dd", u"20210304", date},
      {u"dd/mm/yyyy", u"4/3", this_year},
      {u"dd/mm/yyyy", u"4.3.", this_year},
      {u"yyyy-mm-dd", u"3-4", this_year},
      {u"dd/mm/yyyy", u"2021-03-04 23:59", date},
      {u"dd/mm/yyyy", u"2021-03-04T10:20:30.5", date},
      {u"mm/dd/yyyy", u"3/4/2021 1:05 PM", date},
      {u"dd/mm/yyyy", u"4 3 10:20", this_year},
      {u"d-mmm-yyyy", u"4-Mar-2021", date},
      {u"d-mmm-yyyy", u"4-March-2021 10:20", date},
      {u"dd/mm/yyyy", u"", 0},
      {u"dd/mm/yyyy", u" \t", 0},
  };
  for (const auto& row : rows) {
    const testing::ThreadSettings scope(WithFormat(row.format));
    EXPECT_EQ(StringToDate(row.text), row.value) << ToUtf8(row.text);
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
