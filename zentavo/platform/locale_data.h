// What the user's locale says about number, date and time text.
#pragma once

#include <array>
#include <string>

#include "zentavo/platform/export.h"

namespace zentavo::platform {

// Date and time patterns use the letters d, m (month; minute only behind h), y, h, n, s and ampm,
// as date formatting does: "d/m/yyyy", "h:nn:ss".
struct LocaleData {
  char16_t decimal_separator = u'.';
  char16_t thousand_separator = u',';
  char16_t date_separator = u'/';
  char16_t time_separator = u':';
  std::u16string short_date_format;
  std::u16string long_date_format;
  std::u16string short_time_format;
  std::u16string long_time_format;
  std::u16string time_am;
  std::u16string time_pm;
  std::u16string currency;
  int currency_decimals = 2;
  std::array<std::u16string, 12> short_month_names;
  std::array<std::u16string, 12> long_month_names;
  std::array<std::u16string, 7> short_day_names;  // Sunday first
  std::array<std::u16string, 7> long_day_names;
};

// Returns the data of the user's locale: on Windows the user's regional settings, on Linux those
// that LC_ALL, LC_NUMERIC, LC_TIME, LC_MONETARY and LANG name; the C and POSIX locales, and unknown
// ones, read as English (United States). May be called from any thread.
ZENTAVO_API LocaleData UserLocaleData();

}  // namespace zentavo::platform
