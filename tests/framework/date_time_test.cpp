#include "zentavo/framework/date_time.h"

#include <gtest/gtest.h>

#include <chrono>
#include <limits>
#include <random>
#include <vector>

#include "tests/support/error_of.h"
#include "tests/support/sides.h"
#include "tests/support/thread_settings.h"

namespace zentavo {
namespace {

using testing::ErrorOf;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

TDateTime At(int year, int month, int day, int hour = 0, int minute = 0, int second = 0,
             int millisecond = 0) {
  const TDateTime time = EncodeTime(hour, minute, second, millisecond);
  return JoinDateTime(
      {SplitDateTime(EncodeDate(year, month, day)).day, SplitDateTime(time).millisecond});
}

TEST(EncodeDate, AgreesWithTheCalendarInBothDirections) {
  using namespace std::chrono;
  const sys_days epoch = sys_days(year(1899) / 12 / 30);
  const sys_days last = sys_days(year(9999) / 12 / 31);
  for (sys_days day = sys_days(year(1) / 1 / 1); day <= last; day += days(7)) {
    const year_month_day date(day);
    const auto number = static_cast<double>((day - epoch).count());
    const DateParts parts = DecodeDate(number);
    ASSERT_EQ(parts.year, static_cast<int>(date.year())) << number;
    ASSERT_EQ(parts.month, static_cast<int>(static_cast<unsigned>(date.month()))) << number;
    ASSERT_EQ(parts.day, static_cast<int>(static_cast<unsigned>(date.day()))) << number;
    ASSERT_EQ(EncodeDate(parts.year, parts.month, parts.day), number);
    ASSERT_EQ(DayOfWeek(number), static_cast<int>(weekday(day).c_encoding()) + 1) << number;
  }
  EXPECT_EQ(EncodeDate(1, 1, 1), kFirstDay);
  EXPECT_EQ(EncodeDate(9999, 12, 31), kLastDay);
}

TEST(EncodeDate, RefusesDaysThatAreNone) {
  for (const auto& [year, month, day] :
       {DateParts{0, 1, 1}, DateParts{10000, 1, 1}, DateParts{1900, 2, 29}, DateParts{2020, 0, 1},
        DateParts{2020, 13, 1}, DateParts{2020, 4, 31}, DateParts{2020, 1, 0}}) {
    EXPECT_EQ(TryEncodeDate(year, month, day), std::nullopt) << year << ' ' << month << ' ' << day;
  }
  EXPECT_NE(TryEncodeDate(2000, 2, 29), std::nullopt);
  EXPECT_EQ(ErrorOf<EConvertError>([] { EncodeDate(2023, 2, 29); }),
            "Invalid argument to date encode");
}

TEST(EncodeTime, TakesOneDay) {
  EXPECT_EQ(EncodeTime(6, 0, 0, 0), 0.25);
  EXPECT_NE(TryEncodeTime(23, 59, 59, 999), std::nullopt);
  EXPECT_EQ(TryEncodeTime(24, 0, 0, 0), std::nullopt);
  EXPECT_EQ(TryEncodeTime(0, 60, 0, 0), std::nullopt);
  EXPECT_EQ(TryEncodeTime(0, 0, -1, 0), std::nullopt);
  EXPECT_EQ(ErrorOf<EConvertError>([] { EncodeTime(0, 0, 0, 1000); }),
            "Invalid argument to time encode");
}

TEST(SplitDateTime, CountsTheFractionForwardAndCarries) {
  struct Row {
    TDateTime value;
    std::int64_t day;
    int millisecond;
  };
  for (const Row& row :
       {Row{-1.25, -1, 21'600'000}, Row{-0.25, 0, 21'600'000}, Row{1 - 1e-10, 1, 0},
        Row{44000.9999999999, 44001, 0}, Row{-1.9999999999, 0, 0}, Row{0.5 / 86'400'000, 0, 1},
        Row{0.4 / 86'400'000, 0, 0}, Row{-1e300, -kMaxDay - 1, 0}, Row{kNan, -kMaxDay - 1, 0}}) {
    EXPECT_EQ(SplitDateTime(row.value).day, row.day) << row.value;
    EXPECT_EQ(SplitDateTime(row.value).millisecond, row.millisecond) << row.value;
  }
}

TEST(SplitDateTime, TakesApartWhatJoinDateTimeJoined) {
  std::mt19937_64 random(7);
  for (int round = 0; round < 20000; ++round) {
    const auto day = static_cast<std::int64_t>(random() % 3'652'059) + kFirstDay;
    const auto time = static_cast<std::int32_t>(random() % 86'400'000);
    const DayAndTime split = SplitDateTime(JoinDateTime({day, time}));
    ASSERT_EQ(split.day, day) << time << ", seed 7";
    ASSERT_EQ(split.millisecond, time) << day << ", seed 7";
  }
}

TEST(DecodeDate, GivesZerosOutOfRange) {
  for (const TDateTime value : {kFirstDay - 1.0, kLastDay + 1.0, kLastDay + 0.9999999999, kNan}) {
    EXPECT_EQ(DecodeDate(value).year, 0) << value;
  }
}

TEST(FormatDateTime, WritesByPattern) {
  const TDateTime value = At(2024, 3, 5, 14, 7, 9, 42);
  testing::ExpectRows(
      {u"d dd ddd dddd -> 5 05 Tue Tuesday", u"m mm mmm mmmm -> 3 03 Mar March",
       u"y yy yyy yyyy yyyyyy -> 24 24 2024 2024 2024",
       u"h hh n nn s ss z zzz -> 14 14 7 07 9 09 42 042",
       u"YYYY-MM-DD HH:MM:SS -> 2024-03-05 14:07:09", u"hhmm mm -> 1407 03", u"h A/P -> 2 P",
       u"hAMPM -> 2PM", u"h 'am/pm' -> 14 am/pm", u"'day 'd\" of m \"m -> day 5 of m 3",
       u"'open d -> open d", u"ddddd -> 2024-03-05", u"dddddd -> Tuesday, 5 March 2024",
       u"t|tt -> 14:07|14:07:09", u"c -> 2024-03-05 14:07:09", u" -> 2024-03-05 14:07:09",
       u"Q1 abu -> Q1 abu"},
      [&](StringView pattern) { return ToUtf8(FormatDateTime(pattern, value, {})); });
}

TEST(FormatDateTime, HalvesTheDayAndEndsForSettingsThatNameThemselves) {
  EXPECT_EQ(FormatDateTime(u"h am/pm", At(2024, 1, 1, 0, 30), {}), u"12 am");
  EXPECT_EQ(FormatDateTime(u"h am/pm", At(2024, 1, 1, 12, 30), {}), u"12 pm");
  TFormatSettings settings;
  settings.ShortDateFormat = u"ccddddd yyyy";
  settings.LongTimeFormat = u"tt hh";
  EXPECT_EQ(FormatDateTime(u"c", At(2024, 3, 5, 14), settings), u" 2024  14");
}

TEST(DateTimeToStr, PrintsAMidnightAsTheDateAlone) {
  const TFormatSettings settings;
  EXPECT_EQ(DateTimeToStr(44999.9999999999, settings), u"2023-03-15");
  EXPECT_EQ(DateTimeToStr(-1.25, settings), u"1899-12-29 06:00:00");
  EXPECT_EQ(TimeToStr(0, settings), u"00:00:00");
  EXPECT_EQ(ErrorOf<EConvertError>([] { DateToStr(kLastDay + 1.0); }), "Invalid date");
}

int ThisYear() {
  return DecodeDate(Date()).year;
}

TEST(StrToDate, FollowsTheOrderOfTheFormat) {
  struct Row {
    const char16_t* format;
    char16_t separator;
    const char16_t* text;
    TDateTime value;
  };
  for (const Row& row : {Row{u"dd/mm/yyyy", u'/', u" 31/12/2020 ", At(2020, 12, 31)},
                         Row{u"d/m/yyyy", u'/', u"1 / 2 / 2020", At(2020, 2, 1)},
                         Row{u"yyyy-mm-dd", u'-', u"0999-01-02", At(999, 1, 2)},
                         Row{u"d. m. yyyy.", u'.', u"3. 4. 2020.", At(2020, 4, 3)},
                         Row{u"d.m.yyyy 'г.'", u'.', u"3.4.2020 г.", At(2020, 4, 3)},
                         Row{u"dd-mmm-yyyy", u'-', u"05-Jul-2020", At(2020, 7, 5)},
                         Row{u"dd-mmm-yyyy", u'-', u"5-JULY-2020", At(2020, 7, 5)},
                         Row{u"d mmmm yyyy", u'/', u"5 May 2020", At(2020, 5, 5)},
                         Row{u"yyyy/mmm/dd", u'/', u"mar/9", At(ThisYear(), 3, 9)},
                         Row{u"dd/mm/yyyy", u'/', u"9/3", At(ThisYear(), 3, 9)}}) {
    TFormatSettings settings;
    settings.ShortDateFormat = row.format;
    settings.DateSeparator = row.separator;
    EXPECT_EQ(TryStrToDate(row.text, settings), row.value) << ToUtf8(row.text);
    EXPECT_EQ(TryStrToDate(DateToStr(row.value, settings), settings), row.value)
        << ToUtf8(row.format);
  }
}

TEST(StrToDate, CompletesYearsWithinFiftyYears) {
  for (int year = ThisYear() - 50; year <= ThisYear() + 49; ++year) {
    String text = FormatDateTime(u"yy", At(year, 6, 1));
    EXPECT_EQ(TryStrToDate(text + u"-06-01", TFormatSettings()), At(year, 6, 1)) << year;
  }
}

TEST(StrToDate, RefusesWhatIsNoDate) {
  for (const char16_t* text :
       {u"", u"2020", u"2020-", u"2020-01-", u"-2020-01-02", u"2020-01-02-", u"2020-01-02x",
        u"2020-13-01", u"2020-02-30", u"20201-01-01", u"0000-01-01", u"2020/01/02", u"20200102",
        u"2020-Jan-02", u"2020--01-02", u"2020-01-02 10:00"}) {
    EXPECT_EQ(TryStrToDate(text, TFormatSettings()), std::nullopt) << ToUtf8(text);
  }
  EXPECT_EQ(ErrorOf<EConvertError>([] { StrToDate(u"x", TFormatSettings()); }),
            "'x' is not a valid date");
}

TEST(StrToTime, ReadsMinutesSecondsAndHalves) {
  struct Row {
    const char16_t* text;
    TDateTime value;
  };
  for (const Row& row :
       {Row{u" 9:5 ", EncodeTime(9, 5, 0, 0)}, Row{u"23:59:59.999", EncodeTime(23, 59, 59, 999)},
        Row{u"12:30 am", EncodeTime(0, 30, 0, 0)}, Row{u"12:30PM", EncodeTime(12, 30, 0, 0)},
        Row{u"pm 1:02:03", EncodeTime(13, 2, 3, 0)}}) {
    EXPECT_EQ(TryStrToTime(row.text, TFormatSettings()), row.value) << ToUtf8(row.text);
  }
  for (const char16_t* text :
       {u"", u"10", u"10:", u"24:00", u"10:00:00.", u"10:00:00.1234", u"13:00 pm", u"0:30 am",
        u"am 1:00 pm", u"am", u"100:00", u"-1:00", u"10:00x", u"10:00:00:00"}) {
    EXPECT_EQ(TryStrToTime(text, TFormatSettings()), std::nullopt) << ToUtf8(text);
  }
  EXPECT_EQ(ErrorOf<EConvertError>([] { StrToTime(u"10"); }), "'10' is not a valid time");
}

TEST(StrToDateTime, ReadsBackWhatWasWritten) {
  std::mt19937_64 random(11);
  std::vector<TFormatSettings> all(4);
  all[1] = testing::CommaSettings();
  all[1].TimeSeparator = u'.';
  all[2].ShortDateFormat = u"d. mmm yyyy 'y.'";
  all[2].LongTimeFormat = u"h:nn:ss ampm";
  all[2].TimePMString = u"in the afternoon";
  all[3].LongTimeFormat = u"ampm h:nn:ss' h.'";
  all[3].TimeSeparator = u' ';
  for (int round = 0; round < 5000; ++round) {
    const auto day = static_cast<std::int64_t>(random() % 3'652'059) + kFirstDay;
    const auto second = static_cast<std::int32_t>(random() % 86'400);
    const TDateTime value = JoinDateTime({day, second * 1000});
    for (const TFormatSettings& settings : all) {
      const String text = DateTimeToStr(value, settings);
      ASSERT_EQ(TryStrToDateTime(text, settings), value) << ToUtf8(text);
    }
  }
}

TEST(StrToDateTime, NeedsADateAndABlankBeforeTheTime) {
  const TFormatSettings settings;
  EXPECT_EQ(TryStrToDateTime(u"1899-12-29 06:00", settings), -1.25);
  EXPECT_EQ(TryStrToDateTime(u" 2020-01-02 ", settings), At(2020, 1, 2));
  for (const char16_t* text : {u"10:00", u"2020-01-02AM 1:00", u"2020-01-02 10:00 x",
                               u"2020-01-02 10", u"2020-01-02 10:00 2020-01-02"}) {
    EXPECT_EQ(TryStrToDateTime(text, settings), std::nullopt) << ToUtf8(text);
  }
  EXPECT_EQ(ErrorOf<EConvertError>([] { StrToDateTime(u"x"); }),
            "'x' is not a valid date and time");
}

}  // namespace
}  // namespace zentavo
