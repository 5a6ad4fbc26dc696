#include "zentavo/framework/format_settings.h"

#include <algorithm>
#include <utility>

#include "zentavo/platform/locale_data.h"

namespace zentavo {
namespace {

void TakeUnlessEmpty(String& to, String& from) {
  if (!from.empty()) to = std::move(from);
}

template <std::size_t N>
void TakeUnlessEmpty(std::array<String, N>& to, std::array<String, N>& from) {
  for (std::size_t index = 0; index < N; ++index) TakeUnlessEmpty(to[index], from[index]);
}

// A locale that leaves a text out keeps the invariant one.
TFormatSettings UserFormatSettings() {
  platform::LocaleData locale = platform::UserLocaleData();
  TFormatSettings settings;
  settings.DecimalSeparator = locale.decimal_separator;
  settings.ThousandSeparator = locale.thousand_separator;
  settings.DateSeparator = locale.date_separator;
  settings.TimeSeparator = locale.time_separator;
  settings.CurrencyDecimals =
      static_cast<std::uint8_t>(std::clamp(locale.currency_decimals, 0, 18));
  TakeUnlessEmpty(settings.CurrencyString, locale.currency);
  TakeUnlessEmpty(settings.ShortDateFormat, locale.short_date_format);
  TakeUnlessEmpty(settings.LongDateFormat, locale.long_date_format);
  TakeUnlessEmpty(settings.ShortTimeFormat, locale.short_time_format);
  TakeUnlessEmpty(settings.LongTimeFormat, locale.long_time_format);
  TakeUnlessEmpty(settings.TimeAMString, locale.time_am);
  TakeUnlessEmpty(settings.TimePMString, locale.time_pm);
  TakeUnlessEmpty(settings.ShortMonthNames, locale.short_month_names);
  TakeUnlessEmpty(settings.LongMonthNames, locale.long_month_names);
  TakeUnlessEmpty(settings.ShortDayNames, locale.short_day_names);
  TakeUnlessEmpty(settings.LongDayNames, locale.long_day_names);
  return settings;
}

// What FormatSettings() looks at; a plain pointer, so that it is cheap and needs no construction.
constinit thread_local const TFormatSettings* thread_settings = nullptr;

// Owns the thread's override. Objects that outlive it on the thread find the process's set again.
struct ThreadOverride {
  ThreadOverride() = default;
  ThreadOverride(const ThreadOverride&) = delete;
  ThreadOverride& operator=(const ThreadOverride&) = delete;
  ~ThreadOverride() { thread_settings = nullptr; }

  std::optional<TFormatSettings> settings;
};

}  // namespace

TFormatSettings::TFormatSettings()
    : CurrencyString(u"$"),
      ShortDateFormat(u"yyyy-mm-dd"),
      LongDateFormat(u"dddd, d mmmm yyyy"),
      ShortTimeFormat(u"hh:nn"),
      LongTimeFormat(u"hh:nn:ss"),
      TimeAMString(u"AM"),
      TimePMString(u"PM"),
      ShortMonthNames{u"Jan", u"Feb", u"Mar", u"Apr", u"May", u"Jun",
                      u"Jul", u"Aug", u"Sep", u"Oct", u"Nov", u"Dec"},
      LongMonthNames{u"January", u"February", u"March",     u"April",   u"May",      u"June",
                     u"July",    u"August",   u"September", u"October", u"November", u"December"},
      ShortDayNames{u"Sun", u"Mon", u"Tue", u"Wed", u"Thu", u"Fri", u"Sat"},
      LongDayNames{u"Sunday",   u"Monday", u"Tuesday", u"Wednesday",
                   u"Thursday", u"Friday", u"Saturday"} {}

const TFormatSettings& FormatSettings() {
  return thread_settings != nullptr ? *thread_settings : ProcessFormatSettings();
}

TFormatSettings& ProcessFormatSettings() {
  // Never destroyed: destructors of other static objects still format text.
  static auto* const settings = new TFormatSettings(UserFormatSettings());
  return *settings;
}

void SetThreadFormatSettings(std::optional<TFormatSettings> settings) {
  thread_local ThreadOverride owner;
  thread_settings = nullptr;
  owner.settings = std::move(settings);
  if (owner.settings) thread_settings = &*owner.settings;
}

}  // namespace zentavo
