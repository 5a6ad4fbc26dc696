#include "zentavo/platform/locale_data.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "tests/support/environment.h"

namespace zentavo::platform {
namespace {

// The pattern's parts outside quotes, letters only.
std::u16string Letters(std::u16string_view pattern) {
  std::u16string letters;
  bool quoted = false;
  for (const char16_t unit : pattern) {
    if (unit == u'\'') quoted = !quoted;
    if (!quoted && unit >= u'A' && unit <= u'z') letters += unit;
  }
  return letters;
}

TEST(UserLocaleData, IsComplete) {
  const LocaleData data = UserLocaleData();
  EXPECT_NE(data.decimal_separator, data.thousand_separator);
  for (const std::u16string& format : {data.short_date_format, data.long_date_format}) {
    EXPECT_EQ(Letters(format).find_first_not_of(u"dmy"), std::u16string::npos);
    EXPECT_NE(format.find(u"yy"), std::u16string::npos);
  }
  for (const std::u16string& format : {data.short_time_format, data.long_time_format}) {
    EXPECT_EQ(Letters(format).find_first_not_of(u"hnsamp"), std::u16string::npos);
    EXPECT_NE(format.find(u"nn"), std::u16string::npos);
  }
  EXPECT_NE(data.short_date_format.find(data.date_separator), std::u16string::npos);
  EXPECT_NE(data.long_time_format.find(data.time_separator), std::u16string::npos);
  const std::set<std::u16string> months(data.long_month_names.begin(), data.long_month_names.end());
  const std::set<std::u16string> days(data.long_day_names.begin(), data.long_day_names.end());
  EXPECT_EQ(months.size(), 12U);
  EXPECT_EQ(days.size(), 7U);
}

#ifndef _WIN32
// The locale variables of the environment for one test; those that are not named are empty.
struct LocaleVariables {
  const char *all = "", *numeric = "", *time = "", *monetary = "", *lang = "";
  const testing::EnvironmentVariable lc_all{"LC_ALL", all};
  const testing::EnvironmentVariable lc_numeric{"LC_NUMERIC", numeric};
  const testing::EnvironmentVariable lc_time{"LC_TIME", time};
  const testing::EnvironmentVariable lc_monetary{"LC_MONETARY", monetary};
  const testing::EnvironmentVariable lc_lang{"LANG", lang};
};

TEST(UserLocaleData, ReadsGreek) {
  const LocaleVariables variables{.lang = "el_GR.UTF-8"};
  const LocaleData data = UserLocaleData();
  EXPECT_EQ(data.decimal_separator, u',');
  EXPECT_EQ(data.thousand_separator, u'.');
  EXPECT_EQ(data.date_separator, u'/');
  EXPECT_EQ(data.short_date_format, u"d/m/yyyy");
  EXPECT_EQ(data.long_time_format, u"h:nn:ss ampm");
  EXPECT_EQ(data.time_am, u"π.μ.");
  EXPECT_EQ(data.currency, u"€");
  EXPECT_EQ(data.currency_decimals, 2);
  EXPECT_EQ(data.long_month_names[0], u"Ιανουάριος");
  EXPECT_EQ(data.long_day_names[0], u"Κυριακή");
}

TEST(UserLocaleData, FallsBackToEnglish) {
  for (const char* name : {"C", "POSIX", "C.UTF-8", "", "xx_YY.UTF-8", "@", "."}) {
    SCOPED_TRACE(name);
    const LocaleVariables variables{.all = name};
    const LocaleData data = UserLocaleData();
    EXPECT_EQ(data.decimal_separator, u'.');
    EXPECT_EQ(data.short_date_format, u"m/d/yyyy");
    EXPECT_EQ(data.short_time_format, u"h:nn ampm");
    EXPECT_EQ(data.currency, u"$");
  }
}

TEST(UserLocaleData, EachCategoryHasItsLocale) {
  const LocaleVariables variables{
      .numeric = "de_DE", .time = "pt_BR", .monetary = "ja_JP", .lang = "en_GB"};
  const LocaleData data = UserLocaleData();
  EXPECT_EQ(data.thousand_separator, u'.');
  EXPECT_EQ(data.long_date_format, u"dddd, d 'de' mmmm 'de' yyyy");
  EXPECT_EQ(data.currency_decimals, 0);
}

#endif

}  // namespace
}  // namespace zentavo::platform
