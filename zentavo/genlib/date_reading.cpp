#include "zentavo/genlib/date_reading.h"

#include <algorithm>
#include <array>

#include "zentavo/framework/date_order.h"
#include "zentavo/framework/exception.h"

namespace zentavo {
namespace {

constexpr int kYearDigits = 4;
constexpr std::array<DatePart, 3> kYearFirst = {DatePart::kYear, DatePart::kMonth, DatePart::kDay};

bool IsSeparator(char16_t unit) {
  return unit <= u' ' || unit == u'.' || unit == u'/' || unit == u'-';
}

// The text of a date, and what follows it when that begins as a time does.
struct DateAndRest {
  StringView date;
  StringView time;
};

// A time shows by its separator; it begins behind the blank or 'T' before that.
DateAndRest SplitTime(StringView text, char16_t time_separator) {
  std::size_t mark = text.find(u':');
  if (!IsSeparator(time_separator)) mark = std::min(mark, text.find(time_separator));
  if (mark == StringView::npos) return {text, {}};
  const std::size_t start = text.find_last_of(u" \tTt", mark);
  if (start == StringView::npos) return {{}, text};
  return {TrimView(text.substr(0, start)), text.substr(start + 1)};
}

// Numbers with separators between them; empty when there are none or more than three.
struct Numbers {
  std::array<DateNumber, 3> list;
  int count = 0;
};

std::optional<Numbers> ReadNumbers(StringView text) {
  Numbers numbers;
  while (!text.empty()) {
    if (numbers.count == 3) return std::nullopt;
    DateNumber& number = numbers.list[static_cast<std::size_t>(numbers.count++)];
    for (; !text.empty() && IsDigit(text[0]); text.remove_prefix(1)) {
      if (++number.digits > kYearDigits) return std::nullopt;
      number.value = number.value * 10 + (text[0] - u'0');
    }
    if (number.digits == 0) return std::nullopt;
    // One mark, with blanks around it, or blanks alone.
    text = TrimLeftView(text);
    if (!text.empty() && !IsDigit(text[0])) {
      if (!IsSeparator(text[0])) return std::nullopt;
      text = TrimLeftView(text.substr(1));
    }
  }
  return numbers;
}

// Eight or six digits without a separator, cut by the order.
std::optional<Numbers> CutRun(StringView text, const std::array<DatePart, 3>& order) {
  if (text.size() != 8 && text.size() != 6) return std::nullopt;
  if (!std::all_of(text.begin(), text.end(), IsDigit)) return std::nullopt;
  const std::size_t year_digits = text.size() - 4;
  Numbers numbers;
  for (const DatePart part : order) {
    const std::size_t digits = part == DatePart::kYear ? year_digits : 2;
    DateNumber& number = numbers.list[static_cast<std::size_t>(numbers.count++)];
    number.digits = static_cast<int>(digits);
    for (const char16_t unit : text.substr(0, digits)) {
      number.value = number.value * 10 + (unit - u'0');
    }
    text.remove_prefix(digits);
  }
  return numbers;
}

std::optional<TDateTime> ReadDate(StringView text, const TFormatSettings& settings) {
  const DateOrder order = DateOrderOf(settings.ShortDateFormat);
  if (const auto run = CutRun(text, order.parts)) {
    return DateOfNumbers(run->list, run->count, order.parts);
  }
  const auto numbers = ReadNumbers(text);
  if (!numbers) return TryStrToDate(text, settings);
  const bool year_first = numbers->count == 3 && numbers->list[0].digits == kYearDigits;
  return DateOfNumbers(numbers->list, numbers->count, year_first ? kYearFirst : order.parts);
}

// The date of a text with a time or without one.
std::optional<TDateTime> ReadLeniently(StringView text, const TFormatSettings& settings) {
  const DateAndRest split = SplitTime(text, settings.TimeSeparator);
  if (!split.time.empty() && !TryStrToTime(split.time, settings)) return std::nullopt;
  return ReadDate(split.date, settings);
}

}  // namespace

TDateTime StringToDate(StringView text) {
  const StringView trimmed = TrimView(text);
  if (trimmed.empty()) return 0;
  const TFormatSettings& settings = FormatSettings();
  if (const auto date = ReadLeniently(trimmed, settings)) return *date;
  // Where a date and a time have one separator, only the settings' formats tell them apart.
  if (const auto date = TryStrToDateTime(trimmed, settings)) {
    return static_cast<TDateTime>(SplitDateTime(*date).day);
  }
  throw EConvertError(String(u"'").append(text).append(u"' is not a valid date"));
}

}  // namespace zentavo
