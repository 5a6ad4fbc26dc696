// Dates and times as one number: days since 1899-12-30, the fraction being the time of day. In a
// negative value the fraction still counts forward: -1.25 is 1899-12-29 06:00.
//
// Dates run from 0001-01-01 to 9999-12-31. All functions may be called from any thread.
#pragma once

#include <cstdint>
#include <optional>

#include "zentavo/framework/format_settings.h"
#include "zentavo/framework/text.h"

namespace zentavo {

using TDateTime = double;

struct DateParts {
  int year = 0, month = 0, day = 0;
};
struct TimeParts {
  int hour = 0, minute = 0, second = 0, millisecond = 0;
};

// The calendar date and the time of day as whole numbers: days since 1899-12-30 and milliseconds
// since midnight, 0..86399999.
struct DayAndTime {
  std::int64_t day = 0;
  std::int32_t millisecond = 0;
};
inline constexpr std::int64_t kFirstDay = -693593;      // 0001-01-01
inline constexpr std::int64_t kLastDay = 2958465;       // 9999-12-31
inline constexpr std::int64_t kMaxDay = 1'000'000'000;  // what SplitDateTime still tells apart

// Rounds to the nearest millisecond, which may carry into the next day. NaN and a value beyond
// kMaxDay days, before or behind, give the day -kMaxDay - 1.
ZENTAVO_API DayAndTime SplitDateTime(TDateTime value);
// The inverse: days before 1899-12-30 take the time of day away from the number.
ZENTAVO_API TDateTime JoinDateTime(DayAndTime value);

ZENTAVO_API bool IsLeapYear(int year);
ZENTAVO_API int DaysInMonth(int year, int month);  // 0 for a month that is none

// Raise EConvertError "Invalid argument to date encode" / "Invalid argument to time encode".
ZENTAVO_API TDateTime EncodeDate(int year, int month, int day);
ZENTAVO_API TDateTime EncodeTime(int hour, int minute, int second, int millisecond);
ZENTAVO_API std::optional<TDateTime> TryEncodeDate(int year, int month, int day);
ZENTAVO_API std::optional<TDateTime> TryEncodeTime(int hour, int minute, int second,
                                                   int millisecond);
// Both round to milliseconds first, which may carry into the next day. A value out of range gives
// zeros in the date, NaN and one beyond kMaxDay in the time too.
ZENTAVO_API DateParts DecodeDate(TDateTime value);
ZENTAVO_API TimeParts DecodeTime(TDateTime value);
ZENTAVO_API int DayOfWeek(TDateTime value);  // 1 = Sunday .. 7 = Saturday, of any day

// The wall clock in the user's time zone.
ZENTAVO_API TDateTime Now();
ZENTAVO_API TDateTime Date();
ZENTAVO_API TDateTime Time();

// By the settings' short date format and long time format; DateTimeToStr prints a midnight as the
// date alone. A value out of range raises EConvertError "Invalid date".
ZENTAVO_API String DateToStr(TDateTime value);
ZENTAVO_API String DateToStr(TDateTime value, const TFormatSettings& settings);
ZENTAVO_API String TimeToStr(TDateTime value);
ZENTAVO_API String TimeToStr(TDateTime value, const TFormatSettings& settings);
ZENTAVO_API String DateTimeToStr(TDateTime value);
ZENTAVO_API String DateTimeToStr(TDateTime value, const TFormatSettings& settings);

// By a pattern; letters count in either case, all other units and texts in quotes are copied.
//
//   d dd ddd dddd       day of the month, with two digits, name of the weekday, short and long
//   ddddd dddddd        the settings' short and long date format
//   m mm mmm mmmm       month, with two digits, its name, short and long; m or mm directly behind
//                       an hour is the minute
//   yy yyyy             year, two and four digits (y counts as yy, yyy as yyyy)
//   h hh n nn s ss      hour, minute, second
//   z zzz               millisecond, as a number and with three digits
//   t tt                the settings' short and long time format
//   c                   as DateTimeToStr; the empty pattern too
//   am/pm a/p ampm      the text as it is written in the pattern, or the settings' text; hours of
//                       the pattern count to 12 then
//   / :                 the settings' date and time separators
//
// The settings' formats are taken in where the pattern names them, not where they name themselves.
// A value out of range raises EConvertError "Invalid date".
ZENTAVO_API String FormatDateTime(StringView pattern, TDateTime value);
ZENTAVO_API String FormatDateTime(StringView pattern, TDateTime value,
                                  const TFormatSettings& settings);

// A date: numbers in the order of d, m and y in the settings' short date format, between its
// separators; month names where the format has them (short or long ones, in any case). A missing
// year is the current one; a year of two digits lies within 50 years behind and 49 ahead of the
// current one.
//
// A time: hours and minutes, seconds and a fraction of up to three digits behind '.' or the decimal
// separator if given; the settings' time separator or ':' between them; AM or PM, or the settings'
// texts for them, before or behind. A date and time: a date, then, if given, blanks and a time.
//
// What the short date format and the long time format have behind their last part may stand there
// or not. Blanks may stand around each part; anything else left over fails. Cost: linear. The
// raising forms: EConvertError "'%s' is not a valid date" / "... time" / "... date and time".
ZENTAVO_API TDateTime StrToDate(StringView text);
ZENTAVO_API TDateTime StrToDate(StringView text, const TFormatSettings& settings);
ZENTAVO_API TDateTime StrToTime(StringView text);
ZENTAVO_API TDateTime StrToTime(StringView text, const TFormatSettings& settings);
ZENTAVO_API TDateTime StrToDateTime(StringView text);
ZENTAVO_API TDateTime StrToDateTime(StringView text, const TFormatSettings& settings);
ZENTAVO_API std::optional<TDateTime> TryStrToDate(StringView text, const TFormatSettings& settings);
ZENTAVO_API std::optional<TDateTime> TryStrToTime(StringView text, const TFormatSettings& settings);
ZENTAVO_API std::optional<TDateTime> TryStrToDateTime(StringView text,
                                                      const TFormatSettings& settings);

}  // namespace zentavo
