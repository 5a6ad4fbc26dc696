#include <algorithm>
#include <array>
#include <string_view>

#include "zentavo/framework/date_time.h"
#include "zentavo/framework/exception.h"
#include "zentavo/framework/pattern_scan.h"

namespace zentavo {
namespace {

using pattern_scan::TakeQuoted;
using pattern_scan::TakeUnits;

void AppendPadded(String& out, int value, int digits) {
  std::array<char16_t, 4> units;
  int count = 0;
  for (; value > 0 || count < digits; value /= 10) {
    units[static_cast<std::size_t>(count++)] = static_cast<char16_t>(u'0' + value % 10);
  }
  out.append(std::make_reverse_iterator(units.begin() + count), units.rend());
}

bool StartsWithText(StringView text, StringView upper) {
  return text.size() >= upper.size() &&
         std::equal(upper.begin(), upper.end(), text.begin(),
                    [](char16_t a, char16_t b) { return a == UpCase(b); });
}

// The spellings of the half of the day, as a pattern holds them.
enum class HalfMark { kNone, kAmPm, kAP, kSettings };

HalfMark HalfMarkAt(StringView rest) {
  if (rest.empty() || UpCase(rest[0]) != u'A') return HalfMark::kNone;
  if (StartsWithText(rest, u"AM/PM")) return HalfMark::kAmPm;
  if (StartsWithText(rest, u"A/P")) return HalfMark::kAP;
  if (StartsWithText(rest, u"AMPM")) return HalfMark::kSettings;
  return HalfMark::kNone;
}

bool IsQuote(char16_t unit) {
  return unit == u'\'' || unit == u'"';
}

bool HasHalfMark(StringView rest) {
  while (!rest.empty()) {
    if (HalfMarkAt(rest) != HalfMark::kNone) return true;
    if (IsQuote(rest[0])) {
      TakeQuoted(rest);
    } else {
      TakeUnits(rest, 1);
    }
  }
  return false;
}

enum class Nesting { kOuter, kInner };

class DateTimeWriter {
 public:
  DateTimeWriter(String& out, TDateTime value, const TFormatSettings& settings)
      : out_(out),
        settings_(settings),
        date_(DecodeDate(value)),
        time_(DecodeTime(value)),
        weekday_(DayOfWeek(value)) {
    if (date_.year == 0) throw EConvertError(u"Invalid date");
  }

  void Write(StringView pattern, Nesting nesting = Nesting::kOuter) {
    const bool half_day = HasHalfMark(pattern);
    bool behind_hour = false;
    while (!pattern.empty()) {
      const char16_t letter = UpCase(pattern[0]);
      if (IsQuote(letter)) {
        out_ += TakeQuoted(pattern);
      } else if (const HalfMark mark = HalfMarkAt(pattern); mark != HalfMark::kNone) {
        WriteHalf(mark, pattern);
      } else if (StringView(u"DMYHNSZTC").find(letter) != StringView::npos) {
        const int count = TakeRun(pattern, letter);
        if (letter == u'H') {
          WriteHour(count, half_day);
        } else if (letter == u'T' || letter == u'C' || (letter == u'D' && count > 4)) {
          if (nesting == Nesting::kOuter) WriteInner(letter, count);
        } else {
          WritePart(letter == u'M' && count <= 2 && behind_hour ? u'N' : letter, count);
        }
        behind_hour = letter == u'H';
      } else {
        WriteLiteral(TakeUnits(pattern, 1)[0]);
      }
    }
  }

  void WriteDateAndTime() {
    Write(settings_.ShortDateFormat, Nesting::kInner);
    const TimeParts& t = time_;
    if (t.hour == 0 && t.minute == 0 && t.second == 0 && t.millisecond == 0) return;
    out_ += u' ';
    Write(settings_.LongTimeFormat, Nesting::kInner);
  }

 private:
  static int TakeRun(StringView& pattern, char16_t letter) {
    const auto end = std::find_if(pattern.begin(), pattern.end(),
                                  [letter](char16_t unit) { return UpCase(unit) != letter; });
    // A longer run than any letter knows means what that many mean.
    const auto count = static_cast<int>(std::min<std::ptrdiff_t>(end - pattern.begin(), 6));
    TakeUnits(pattern, static_cast<std::size_t>(end - pattern.begin()));
    return count;
  }

  void WriteLiteral(char16_t unit) {
    if (unit == u'/') unit = settings_.DateSeparator;
    if (unit == u':') unit = settings_.TimeSeparator;
    out_ += unit;
  }

  void WriteHalf(HalfMark mark, StringView& pattern) {
    const bool morning = time_.hour < 12;
    if (mark == HalfMark::kSettings) {
      TakeUnits(pattern, 4);
      out_ += morning ? settings_.TimeAMString : settings_.TimePMString;
      return;
    }
    const std::size_t size = mark == HalfMark::kAmPm ? 2 : 1;
    const StringView both = TakeUnits(pattern, 2 * size + 1);
    out_ += morning ? both.substr(0, size) : both.substr(size + 1);
  }

  void WriteHour(int count, bool half_day) {
    const int hour = half_day ? (time_.hour + 11) % 12 + 1 : time_.hour;
    AppendPadded(out_, hour, std::min(count, 2));
  }

  void WriteInner(char16_t letter, int count) {
    switch (letter) {
      case u'T':
        Write(count == 1 ? settings_.ShortTimeFormat : settings_.LongTimeFormat, Nesting::kInner);
        break;
      case u'D':
        Write(count == 5 ? settings_.ShortDateFormat : settings_.LongDateFormat, Nesting::kInner);
        break;
      default: WriteDateAndTime(); break;
    }
  }

  void WritePart(char16_t letter, int count) {
    switch (letter) {
      case u'D': WriteDay(count); break;
      case u'M': WriteMonth(count); break;
      case u'Y': WriteYear(count); break;
      case u'N': AppendPadded(out_, time_.minute, std::min(count, 2)); break;
      case u'S': AppendPadded(out_, time_.second, std::min(count, 2)); break;
      default: AppendPadded(out_, time_.millisecond, count < 3 ? 1 : 3); break;
    }
  }

  void WriteDay(int count) {
    const auto weekday = static_cast<std::size_t>(weekday_ - 1);
    if (count <= 2) {
      AppendPadded(out_, date_.day, count);
    } else {
      out_ += count == 3 ? settings_.ShortDayNames[weekday] : settings_.LongDayNames[weekday];
    }
  }

  void WriteMonth(int count) {
    const auto month = static_cast<std::size_t>(date_.month - 1);
    if (count <= 2) {
      AppendPadded(out_, date_.month, count);
    } else {
      out_ += count == 3 ? settings_.ShortMonthNames[month] : settings_.LongMonthNames[month];
    }
  }

  void WriteYear(int count) {
    if (count <= 2) {
      AppendPadded(out_, date_.year % 100, 2);
    } else {
      AppendPadded(out_, date_.year, 4);
    }
  }

  String& out_;
  const TFormatSettings& settings_;
  DateParts date_;
  TimeParts time_;
  int weekday_;
};

}  // namespace

String DateToStr(TDateTime value) {
  return DateToStr(value, FormatSettings());
}

String DateToStr(TDateTime value, const TFormatSettings& settings) {
  String out;
  DateTimeWriter(out, value, settings).Write(settings.ShortDateFormat, Nesting::kInner);
  return out;
}

String TimeToStr(TDateTime value) {
  return TimeToStr(value, FormatSettings());
}

String TimeToStr(TDateTime value, const TFormatSettings& settings) {
  String out;
  DateTimeWriter(out, value, settings).Write(settings.LongTimeFormat, Nesting::kInner);
  return out;
}

String DateTimeToStr(TDateTime value) {
  return DateTimeToStr(value, FormatSettings());
}

String DateTimeToStr(TDateTime value, const TFormatSettings& settings) {
  String out;
  DateTimeWriter(out, value, settings).WriteDateAndTime();
  return out;
}

String FormatDateTime(StringView pattern, TDateTime value) {
  return FormatDateTime(pattern, value, FormatSettings());
}

String FormatDateTime(StringView pattern, TDateTime value, const TFormatSettings& settings) {
  String out;
  DateTimeWriter(out, value, settings).Write(pattern.empty() ? StringView(u"c") : pattern);
  return out;
}

}  // namespace zentavo
