#include "zentavo/platform/locale_data.h"

#include <unicode/udat.h>
#include <unicode/udatpg.h>
#include <unicode/uloc.h>
#include <unicode/unum.h>

#include <algorithm>
#include <memory>
#include <string_view>
#include <utility>

#include "zentavo/platform/linux/user_locale.h"

namespace zentavo::platform {

namespace {

template <auto close>
struct Closer {
  template <typename T>
  void operator()(T* opened) const {
    close(opened);
  }
};
using DateFormat = std::unique_ptr<UDateFormat, Closer<udat_close>>;
using PatternMaker = std::unique_ptr<UDateTimePatternGenerator, Closer<udatpg_close>>;
using NumberFormat = std::unique_ptr<UNumberFormat, Closer<unum_close>>;

// Calls `get(buffer, capacity, status)` and returns what it wrote, empty when it failed.
template <typename Get>
std::u16string TextFrom(Get get) {
  char16_t buffer[128];
  UErrorCode status = U_ZERO_ERROR;
  const std::int32_t size = get(buffer, static_cast<std::int32_t>(std::size(buffer)), &status);
  if (U_FAILURE(status)) return {};
  return {buffer, static_cast<std::size_t>(size)};
}

// Moves the quoted text at the start of `rest` to `out`. A doubled quote is an apostrophe.
void MoveQuoted(std::u16string_view& rest, std::u16string& out) {
  if (rest.starts_with(u"''")) {
    out += u"\"'\"";
    rest.remove_prefix(2);
    return;
  }
  const std::size_t end = std::min(rest.find(u'\'', 1), rest.size() - 1);
  out += rest.substr(0, end + 1);
  rest.remove_prefix(end + 1);
}

std::u16string FieldPattern(char16_t letter, std::size_t count) {
  switch (letter) {
    case u'd': return std::u16string(count, u'd');
    case u'E':
    case u'c': return count == 4 ? u"dddd" : u"ddd";
    case u'M':
    case u'L': return std::u16string(count, u'm');
    case u'y':
    case u'u': return count == 2 ? u"yy" : u"yyyy";
    case u'H':
    case u'h':
    case u'k':
    case u'K': return std::u16string(count, u'h');
    case u'm': return std::u16string(count, u'n');
    case u's': return std::u16string(count, u's');
    case u'a':
    case u'b':
    case u'B': return u"ampm";
    default: return {};
  }
}

bool IsPatternLetter(char16_t unit) {
  return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z');
}

// Narrow and other fixed blanks would only surprise who types a time.
char16_t PlainBlank(char16_t unit) {
  return unit == u'\u202F' || unit == u'\u00A0' ? u' ' : unit;
}

// From the system's pattern letters to this library's.
std::u16string TranslatePattern(std::u16string_view rest) {
  std::u16string out;
  while (!rest.empty()) {
    const char16_t first = rest.front();
    if (first == u'\'') {
      MoveQuoted(rest, out);
      continue;
    }
    const std::size_t count = std::min(rest.find_first_not_of(first), rest.size());
    if (IsPatternLetter(first)) {
      out += FieldPattern(first, count);
    } else {
      out.append(count, PlainBlank(first));
    }
    rest.remove_prefix(count);
  }
  return out;
}

// The mark between two fields of a pattern, whatever blanks and direction marks stand beside it.
char16_t SeparatorIn(std::u16string_view pattern, char16_t otherwise) {
  const std::size_t found = pattern.find_first_of(u"./-:,");
  return found == std::u16string_view::npos ? otherwise : pattern[found];
}

DateFormat OpenDateFormat(const std::string& locale, UDateFormatStyle time, UDateFormatStyle date) {
  UErrorCode status = U_ZERO_ERROR;
  return DateFormat(udat_open(time, date, locale.c_str(), nullptr, 0, nullptr, 0, &status));
}

std::u16string StylePattern(const std::string& locale, UDateFormatStyle time,
                            UDateFormatStyle date) {
  const DateFormat format = OpenDateFormat(locale, time, date);
  if (!format) return {};
  return TranslatePattern(TextFrom([&](char16_t* buffer, std::int32_t size, UErrorCode* status) {
    return udat_toPattern(format.get(), false, buffer, size, status);
  }));
}

// The numeric date of the locale; its short style would cut the year to two digits.
std::u16string NumericDatePattern(const std::string& locale) {
  UErrorCode opened = U_ZERO_ERROR;
  const PatternMaker maker(udatpg_open(locale.c_str(), &opened));
  if (U_FAILURE(opened)) return {};
  return TranslatePattern(TextFrom([&](char16_t* buffer, std::int32_t size, UErrorCode* status) {
    return udatpg_getBestPattern(maker.get(), u"yMd", 3, buffer, size, status);
  }));
}

template <std::size_t count>
void ReadNames(const UDateFormat* format, UDateFormatSymbolType type, std::int32_t first,
               std::array<std::u16string, count>& names) {
  for (std::size_t i = 0; i < count; ++i) {
    names[i] = TextFrom([&](char16_t* buffer, std::int32_t size, UErrorCode* status) {
      return udat_getSymbols(format, type, first + static_cast<std::int32_t>(i), buffer, size,
                             status);
    });
  }
}

void ReadDates(LocaleData& data) {
  const std::string locale = UserLocale("LC_TIME") + "@calendar=gregorian";
  data.short_date_format = NumericDatePattern(locale);
  data.long_date_format = StylePattern(locale, UDAT_NONE, UDAT_FULL);
  data.short_time_format = StylePattern(locale, UDAT_SHORT, UDAT_NONE);
  data.long_time_format = StylePattern(locale, UDAT_MEDIUM, UDAT_NONE);
  data.date_separator = SeparatorIn(data.short_date_format, u'/');
  data.time_separator = SeparatorIn(data.short_time_format, u':');

  const DateFormat format = OpenDateFormat(locale, UDAT_SHORT, UDAT_SHORT);
  if (!format) return;
  ReadNames(format.get(), UDAT_STANDALONE_SHORT_MONTHS, 0, data.short_month_names);
  ReadNames(format.get(), UDAT_STANDALONE_MONTHS, 0, data.long_month_names);
  ReadNames(format.get(), UDAT_STANDALONE_SHORT_WEEKDAYS, UCAL_SUNDAY, data.short_day_names);
  ReadNames(format.get(), UDAT_STANDALONE_WEEKDAYS, UCAL_SUNDAY, data.long_day_names);
  std::array<std::u16string, 2> halves;
  ReadNames(format.get(), UDAT_AM_PMS, 0, halves);
  data.time_am = std::move(halves[0]);
  data.time_pm = std::move(halves[1]);
}

std::u16string Symbol(const UNumberFormat* format, UNumberFormatSymbol symbol) {
  return TextFrom([&](char16_t* buffer, std::int32_t size, UErrorCode* status) {
    return unum_getSymbol(format, symbol, buffer, size, status);
  });
}

NumberFormat OpenNumberFormat(const std::string& locale, UNumberFormatStyle style) {
  UErrorCode status = U_ZERO_ERROR;
  return NumberFormat(unum_open(style, nullptr, 0, locale.c_str(), nullptr, &status));
}

void ReadNumbers(LocaleData& data) {
  const NumberFormat format = OpenNumberFormat(UserLocale("LC_NUMERIC"), UNUM_DECIMAL);
  if (!format) return;
  const std::u16string decimal = Symbol(format.get(), UNUM_DECIMAL_SEPARATOR_SYMBOL);
  const std::u16string thousand = Symbol(format.get(), UNUM_GROUPING_SEPARATOR_SYMBOL);
  if (!decimal.empty()) data.decimal_separator = decimal.front();
  if (!thousand.empty()) data.thousand_separator = thousand.front();
}

void ReadCurrency(LocaleData& data) {
  const NumberFormat format = OpenNumberFormat(UserLocale("LC_MONETARY"), UNUM_CURRENCY);
  if (!format) return;
  data.currency = Symbol(format.get(), UNUM_CURRENCY_SYMBOL);
  data.currency_decimals = unum_getAttribute(format.get(), UNUM_MAX_FRACTION_DIGITS);
}

}  // namespace

LocaleData UserLocaleData() {
  LocaleData data;
  ReadNumbers(data);
  ReadDates(data);
  ReadCurrency(data);
  return data;
}

}  // namespace zentavo::platform
