#include "zentavo/framework/date_time.h"

#include <array>
#include <cmath>

#include "zentavo/framework/exception.h"
#include "zentavo/platform/clock.h"

namespace zentavo {
namespace {

constexpr int kFirstYear = 1;
constexpr int kLastYear = 9999;
constexpr int kMillisecondsADay = 86'400'000;

constexpr int kDaysAYear = 365;
constexpr int kDaysIn4Years = 4 * kDaysAYear + 1;
constexpr int kDaysIn100Years = 25 * kDaysIn4Years - 1;
constexpr int kDaysIn400Years = 4 * kDaysIn100Years + 1;

// Days from 0000-03-01 to 1899-12-30. Years that begin in March have their leap day at the end.
constexpr std::int64_t kEpoch = 693'899;

std::int64_t DayNumber(int year, int month, int day) {
  const int march_year = month > 2 ? year : year - 1;
  const int march_month = month > 2 ? month - 3 : month + 9;
  const int day_of_year = (153 * march_month + 2) / 5 + day - 1;
  return std::int64_t{march_year} * kDaysAYear + march_year / 4 - march_year / 100 +
         march_year / 400 + day_of_year - kEpoch;
}

// `day` lies within kFirstDay and kLastDay.
DateParts PartsOfDay(std::int64_t day) {
  const int since = static_cast<int>(day + kEpoch);
  const int era = since / kDaysIn400Years;
  const int day_of_era = since % kDaysIn400Years;
  const int year_of_era = (day_of_era - day_of_era / (kDaysIn4Years - 1) +
                           day_of_era / kDaysIn100Years - day_of_era / (kDaysIn400Years - 1)) /
                          kDaysAYear;
  const int day_of_year =
      day_of_era - (kDaysAYear * year_of_era + year_of_era / 4 - year_of_era / 100);
  const int march_month = (5 * day_of_year + 2) / 153;
  const int month = march_month < 10 ? march_month + 3 : march_month - 9;
  const int day_of_month = day_of_year - (153 * march_month + 2) / 5 + 1;
  return {era * 400 + year_of_era + (month <= 2 ? 1 : 0), month, day_of_month};
}

bool IsDate(int year, int month, int day) {
  return year >= kFirstYear && year <= kLastYear && day >= 1 && day <= DaysInMonth(year, month);
}

bool Within(int value, int limit) {
  return value >= 0 && value < limit;
}

int MillisecondOfDay(int hour, int minute, int second, int millisecond) {
  return ((hour * 60 + minute) * 60 + second) * 1000 + millisecond;
}

}  // namespace

DayAndTime SplitDateTime(TDateTime value) {
  if (!(std::fabs(value) < static_cast<double>(kMaxDay))) return {-kMaxDay - 1, 0};
  const double whole = std::trunc(value);
  DayAndTime split{static_cast<std::int64_t>(whole),
                   static_cast<std::int32_t>(std::fabs(value - whole) * kMillisecondsADay + 0.5)};
  if (split.millisecond == kMillisecondsADay) {
    ++split.day;
    split.millisecond = 0;
  }
  return split;
}

TDateTime JoinDateTime(DayAndTime value) {
  const double time = static_cast<double>(value.millisecond) / kMillisecondsADay;
  const auto day = static_cast<double>(value.day);
  return value.day < 0 ? day - time : day + time;
}

bool IsLeapYear(int year) {
  return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

int DaysInMonth(int year, int month) {
  constexpr std::array<int, 13> kDays = {0, 31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (month < 1 || month > 12) return 0;
  if (month == 2 && IsLeapYear(year)) return 29;
  return kDays[static_cast<std::size_t>(month)];
}

TDateTime EncodeDate(int year, int month, int day) {
  if (const auto date = TryEncodeDate(year, month, day)) return *date;
  throw EConvertError(u"Invalid argument to date encode");
}

TDateTime EncodeTime(int hour, int minute, int second, int millisecond) {
  if (const auto time = TryEncodeTime(hour, minute, second, millisecond)) return *time;
  throw EConvertError(u"Invalid argument to time encode");
}

std::optional<TDateTime> TryEncodeDate(int year, int month, int day) {
  if (!IsDate(year, month, day)) return std::nullopt;
  return static_cast<TDateTime>(DayNumber(year, month, day));
}

std::optional<TDateTime> TryEncodeTime(int hour, int minute, int second, int millisecond) {
  if (!Within(hour, 24) || !Within(minute, 60) || !Within(second, 60) ||
      !Within(millisecond, 1000)) {
    return std::nullopt;
  }
  return JoinDateTime({0, MillisecondOfDay(hour, minute, second, millisecond)});
}

DateParts DecodeDate(TDateTime value) {
  const std::int64_t day = SplitDateTime(value).day;
  if (day < kFirstDay || day > kLastDay) return {};
  return PartsOfDay(day);
}

TimeParts DecodeTime(TDateTime value) {
  const int time = SplitDateTime(value).millisecond;
  return {time / 3'600'000, time / 60'000 % 60, time / 1000 % 60, time % 1000};
}

int DayOfWeek(TDateTime value) {
  constexpr int kSaturday = 6;  // of day 0, counted from 0
  const auto day = static_cast<int>((SplitDateTime(value).day + kSaturday) % 7);
  return (day < 0 ? day + 7 : day) + 1;
}

TDateTime Now() {
  const platform::LocalTime now = platform::CurrentLocalTime();
  return JoinDateTime({DayNumber(now.year, now.month, now.day),
                       MillisecondOfDay(now.hour, now.minute, now.second, now.millisecond)});
}

TDateTime Date() {
  return static_cast<TDateTime>(SplitDateTime(Now()).day);
}

TDateTime Time() {
  return JoinDateTime({0, SplitDateTime(Now()).millisecond});
}

}  // namespace zentavo
