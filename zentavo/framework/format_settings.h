// How numbers, dates, times and amounts are written: one set for the process, one override per
// thread.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "zentavo/framework/text.h"

namespace zentavo {

// A value type; a default one is the invariant set: '.' and ',', "yyyy-mm-dd", "hh:nn:ss", "$",
// English names.
struct ZENTAVO_API TFormatSettings {
  TFormatSettings();

  char16_t DecimalSeparator = u'.';
  char16_t ThousandSeparator = u',';
  char16_t DateSeparator = u'-';
  char16_t TimeSeparator = u':';
  std::uint8_t CurrencyDecimals = 2;
  String CurrencyString;
  String ShortDateFormat;
  String LongDateFormat;
  String ShortTimeFormat;
  String LongTimeFormat;
  String TimeAMString;
  String TimePMString;
  std::array<String, 12> ShortMonthNames;
  std::array<String, 12> LongMonthNames;
  std::array<String, 7> ShortDayNames;  // Sunday first
  std::array<String, 7> LongDayNames;
};

// The set that applies on the calling thread: its override, else the process's. The reference stays
// valid until the thread changes its override.
ZENTAVO_API const TFormatSettings& FormatSettings();

// The process's set, read from the user's locale at the first use. Change it before other threads
// format text: it is not locked.
ZENTAVO_API TFormatSettings& ProcessFormatSettings();

// Overrides the set of the calling thread; nothing removes the override.
ZENTAVO_API void SetThreadFormatSettings(std::optional<TFormatSettings> settings);

}  // namespace zentavo
