#include <algorithm>
#include <span>

#include "zentavo/framework/date_order.h"
#include "zentavo/framework/date_time.h"
#include "zentavo/framework/exception.h"

namespace zentavo {
namespace {

constexpr int kNumberDigits = 4;

// Reads the pieces of dates and times from left to right.
class DateCursor {
 public:
  explicit DateCursor(StringView text) : rest_(text) {}

  bool AtEnd() const { return rest_.empty(); }
  // Returns whether there were any.
  bool SkipBlanks() {
    const std::size_t before = rest_.size();
    rest_ = TrimLeftView(rest_);
    return rest_.size() < before;
  }
  bool RestIsBlank() {
    SkipBlanks();
    return AtEnd();
  }
  char16_t Peek() const { return rest_.empty() ? u'\0' : rest_[0]; }
  bool TakeIf(char16_t unit) {
    if (rest_.empty() || rest_[0] != unit) return false;
    rest_.remove_prefix(1);
    return true;
  }
  // Without regard to case; the empty text stands nowhere.
  bool TakeText(StringView text) {
    if (text.empty() || !SameText(rest_.substr(0, text.size()), text)) return false;
    rest_.remove_prefix(text.size());
    return true;
  }
  // Fails at no digit and at more than `most`.
  std::optional<DateNumber> TakeNumber(int most) {
    DateNumber number;
    for (; !rest_.empty() && IsDigit(rest_[0]); rest_.remove_prefix(1)) {
      if (number.digits == most) return std::nullopt;
      number.value = number.value * 10 + (rest_[0] - u'0');
      ++number.digits;
    }
    if (number.digits == 0) return std::nullopt;
    return number;
  }

 private:
  StringView rest_;
};

// Takes what `format` has behind its last part, if that follows.
void TakeTail(DateCursor& cursor, StringView format, char16_t separator) {
  const StringView tail = TrimView(FormatTail(format));
  if (tail.empty()) return;
  DateCursor ahead = cursor;
  ahead.SkipBlanks();
  for (const char16_t unit : tail) {
    if (unit == u'\'' || unit == u'"') continue;
    if (unit <= u' ') {
      ahead.SkipBlanks();
      continue;
    }
    if (!ahead.TakeIf(unit == u'/' || unit == u':' ? separator : unit)) return;
  }
  cursor = ahead;
}

// ---- Dates ----

// The longest month name that stands at `cursor`.
std::optional<DateNumber> TakeMonthName(DateCursor& cursor, const TFormatSettings& settings) {
  StringView longest;
  DateNumber month;
  for (std::size_t index = 0; index < 12; ++index) {
    for (const String* name : {&settings.LongMonthNames[index], &settings.ShortMonthNames[index]}) {
      if (name->size() <= longest.size() || !DateCursor(cursor).TakeText(*name)) continue;
      longest = *name;
      month = {static_cast<int>(index) + 1, 2};
    }
  }
  if (longest.empty()) return std::nullopt;
  cursor.TakeText(longest);
  return month;
}

class DateReader {
 public:
  DateReader(DateCursor& cursor, const TFormatSettings& settings)
      : cursor_(cursor), settings_(settings), order_(DateOrderOf(settings.ShortDateFormat)) {}

  std::optional<TDateTime> Read() {
    std::array<DateNumber, 3> numbers;
    int count = 0;
    do {
      cursor_.SkipBlanks();
      const auto number = TakePart(count);
      if (!number) return std::nullopt;
      numbers[static_cast<std::size_t>(count++)] = *number;
    } while (count < 3 && TakeSeparator());
    TakeTail(cursor_, settings_.ShortDateFormat, settings_.DateSeparator);
    return DateOfNumbers(numbers, count, order_.parts);
  }

 private:
  std::optional<DateNumber> TakePart(int index) {
    if (order_.month_is_name) {
      // Without a year the month may stand one place earlier.
      const bool month_here =
          PartAt(index) == DatePart::kMonth ||
          (index < 2 && PartAt(index) == DatePart::kYear && PartAt(index + 1) == DatePart::kMonth);
      if (month_here) {
        if (const auto month = TakeMonthName(cursor_, settings_)) return month;
      }
    }
    return cursor_.TakeNumber(kNumberDigits);
  }

  DatePart PartAt(int index) const { return order_.parts[static_cast<std::size_t>(index)]; }

  // Takes nothing when only blanks follow: what stands there belongs to the tail then.
  bool TakeSeparator() {
    DateCursor ahead = cursor_;
    const bool blank = ahead.SkipBlanks();
    const bool mark = IsSeparator(ahead.Peek()) && ahead.TakeIf(ahead.Peek());
    if (!mark && !(blank && IsSeparator(u' '))) return false;
    if (DateCursor(ahead).RestIsBlank()) return false;
    cursor_ = ahead;
    return true;
  }

  // The settings' separator, or a mark or blank that the format itself has.
  bool IsSeparator(char16_t unit) const {
    if (unit == settings_.DateSeparator) return true;
    return StringView(u" .,/-").find(unit) != StringView::npos &&
           settings_.ShortDateFormat.find(unit) != String::npos;
  }

  DateCursor& cursor_;
  const TFormatSettings& settings_;
  DateOrder order_;
};

// ---- Times ----

enum class HalfDay { kNone, kMorning, kAfternoon };

class TimeReader {
 public:
  TimeReader(DateCursor& cursor, const TFormatSettings& settings)
      : cursor_(cursor), settings_(settings) {}

  std::optional<TDateTime> Read() {
    HalfDay half = TakeHalf();
    const auto hour = TakeNumber();
    if (!hour || !TakeSeparator()) return std::nullopt;
    const auto minute = TakeNumber();
    if (!minute || !TakeSeconds()) return std::nullopt;
    if (half == HalfDay::kNone) half = TakeHalf();
    TakeTail(cursor_, settings_.LongTimeFormat, settings_.TimeSeparator);
    const auto hour_of_day = HourOfDay(hour->value, half);
    if (!hour_of_day) return std::nullopt;
    return TryEncodeTime(*hour_of_day, minute->value, second_, millisecond_);
  }

 private:
  std::optional<DateNumber> TakeNumber() {
    cursor_.SkipBlanks();
    return cursor_.TakeNumber(2);
  }

  bool TakeSeparator() {
    const bool blank = cursor_.SkipBlanks();
    if (cursor_.TakeIf(settings_.TimeSeparator) || cursor_.TakeIf(u':')) return true;
    return blank && settings_.TimeSeparator == u' ' && IsDigit(cursor_.Peek());
  }

  // Whether the seconds, which may be missing, are sound.
  bool TakeSeconds() {
    if (!TakeSeparator()) return true;
    const auto second = TakeNumber();
    if (!second) return false;
    second_ = second->value;
    if (!cursor_.TakeIf(u'.') && !cursor_.TakeIf(settings_.DecimalSeparator)) return true;
    const auto fraction = cursor_.TakeNumber(3);
    if (!fraction) return false;
    millisecond_ = fraction->value;
    for (int digits = fraction->digits; digits < 3; ++digits) millisecond_ *= 10;
    return true;
  }

  HalfDay TakeHalf() {
    cursor_.SkipBlanks();
    if (cursor_.TakeText(settings_.TimeAMString) || cursor_.TakeText(u"AM")) {
      return HalfDay::kMorning;
    }
    if (cursor_.TakeText(settings_.TimePMString) || cursor_.TakeText(u"PM")) {
      return HalfDay::kAfternoon;
    }
    return HalfDay::kNone;
  }

  static std::optional<int> HourOfDay(int hour, HalfDay half) {
    if (half == HalfDay::kNone) return hour;
    if (hour < 1 || hour > 12) return std::nullopt;
    return hour % 12 + (half == HalfDay::kAfternoon ? 12 : 0);
  }

  DateCursor& cursor_;
  const TFormatSettings& settings_;
  int second_ = 0;
  int millisecond_ = 0;
};

[[noreturn]] void RaiseNot(StringView text, StringView what) {
  String message = u"'";
  message.append(text).append(u"' is not a valid ").append(what);
  throw EConvertError(message);
}

}  // namespace

TDateTime StrToDate(StringView text) {
  return StrToDate(text, FormatSettings());
}

TDateTime StrToDate(StringView text, const TFormatSettings& settings) {
  if (const auto value = TryStrToDate(text, settings)) return *value;
  RaiseNot(text, u"date");
}

TDateTime StrToTime(StringView text) {
  return StrToTime(text, FormatSettings());
}

TDateTime StrToTime(StringView text, const TFormatSettings& settings) {
  if (const auto value = TryStrToTime(text, settings)) return *value;
  RaiseNot(text, u"time");
}

TDateTime StrToDateTime(StringView text) {
  return StrToDateTime(text, FormatSettings());
}

TDateTime StrToDateTime(StringView text, const TFormatSettings& settings) {
  if (const auto value = TryStrToDateTime(text, settings)) return *value;
  RaiseNot(text, u"date and time");
}

std::optional<TDateTime> TryStrToDate(StringView text, const TFormatSettings& settings) {
  DateCursor cursor(text);
  const auto date = DateReader(cursor, settings).Read();
  return cursor.RestIsBlank() ? date : std::nullopt;
}

std::optional<TDateTime> TryStrToTime(StringView text, const TFormatSettings& settings) {
  DateCursor cursor(text);
  const auto time = TimeReader(cursor, settings).Read();
  return cursor.RestIsBlank() ? time : std::nullopt;
}

std::optional<TDateTime> TryStrToDateTime(StringView text, const TFormatSettings& settings) {
  DateCursor cursor(text);
  const auto date = DateReader(cursor, settings).Read();
  if (!date || cursor.AtEnd()) return date;
  if (!cursor.SkipBlanks()) return std::nullopt;
  if (cursor.AtEnd()) return date;
  const auto time = TimeReader(cursor, settings).Read();
  if (!time || !cursor.RestIsBlank()) return std::nullopt;
  return JoinDateTime({SplitDateTime(*date).day, SplitDateTime(*time).millisecond});
}

}  // namespace zentavo
