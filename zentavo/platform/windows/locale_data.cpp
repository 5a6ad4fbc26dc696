#include "zentavo/platform/locale_data.h"

#include <algorithm>
#include <string_view>

#include "zentavo/platform/windows/wide.h"

namespace zentavo::platform {

namespace {

std::u16string Info(LCTYPE type) {
  wchar_t buffer[128];
  const int size =
      GetLocaleInfoEx(LOCALE_NAME_USER_DEFAULT, type, buffer, static_cast<int>(std::size(buffer)));
  return size > 0 ? FromWide({buffer, static_cast<std::size_t>(size - 1)}) : std::u16string();
}

void ReadUnit(LCTYPE type, char16_t& unit) {
  const std::u16string text = Info(type);
  if (!text.empty()) unit = text.front();
}

int Number(LCTYPE type) {
  DWORD value = 0;
  GetLocaleInfoEx(LOCALE_NAME_USER_DEFAULT, type | LOCALE_RETURN_NUMBER,
                  reinterpret_cast<wchar_t*>(&value), sizeof value / sizeof(wchar_t));
  return static_cast<int>(value);
}

std::u16string FieldPattern(char16_t letter, std::size_t count) {
  switch (letter) {
    case u'd': return std::u16string(count, u'd');
    case u'M': return std::u16string(count, u'm');
    case u'y': return count > 2 ? u"yyyy" : u"yy";
    case u'H':
    case u'h': return std::u16string(count, u'h');
    case u'm': return std::u16string(count, u'n');
    case u's': return std::u16string(count, u's');
    case u't': return u"ampm";
    default: return {};
  }
}

bool IsPatternLetter(char16_t unit) {
  return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z');
}

// How many units at the start of `rest` belong together: a quoted text, or equal units.
std::size_t FirstRun(std::u16string_view rest) {
  if (rest.front() == u'\'') return std::min(rest.find(u'\'', 1), rest.size() - 1) + 1;
  return std::min(rest.find_first_not_of(rest.front()), rest.size());
}

// From the system's pattern letters to this library's.
std::u16string TranslatePattern(std::u16string_view rest) {
  std::u16string out;
  while (!rest.empty()) {
    const std::size_t count = FirstRun(rest);
    if (IsPatternLetter(rest.front())) {
      out += FieldPattern(rest.front(), count);
    } else {
      out += rest.substr(0, count);
    }
    rest.remove_prefix(count);
  }
  return out;
}

template <std::size_t count>
void ReadNames(LCTYPE first, std::array<std::u16string, count>& names) {
  for (std::size_t i = 0; i < count; ++i) names[i] = Info(first + static_cast<LCTYPE>(i));
}

// The system counts the days from Monday.
void ReadDays(LCTYPE monday, std::array<std::u16string, 7>& names) {
  ReadNames(monday, names);
  std::rotate(names.begin(), names.end() - 1, names.end());
}

}  // namespace

LocaleData UserLocaleData() {
  LocaleData data;
  ReadUnit(LOCALE_SDECIMAL, data.decimal_separator);
  ReadUnit(LOCALE_STHOUSAND, data.thousand_separator);
  ReadUnit(LOCALE_SDATE, data.date_separator);
  ReadUnit(LOCALE_STIME, data.time_separator);
  data.short_date_format = TranslatePattern(Info(LOCALE_SSHORTDATE));
  data.long_date_format = TranslatePattern(Info(LOCALE_SLONGDATE));
  data.short_time_format = TranslatePattern(Info(LOCALE_SSHORTTIME));
  data.long_time_format = TranslatePattern(Info(LOCALE_STIMEFORMAT));
  data.time_am = Info(LOCALE_SAM);
  data.time_pm = Info(LOCALE_SPM);
  data.currency = Info(LOCALE_SCURRENCY);
  data.currency_decimals = Number(LOCALE_ICURRDIGITS);
  ReadNames(LOCALE_SABBREVMONTHNAME1, data.short_month_names);
  ReadNames(LOCALE_SMONTHNAME1, data.long_month_names);
  ReadDays(LOCALE_SABBREVDAYNAME1, data.short_day_names);
  ReadDays(LOCALE_SDAYNAME1, data.long_day_names);
  return data;
}

}  // namespace zentavo::platform
