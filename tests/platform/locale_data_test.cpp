#include "zentavo/platform/locale_data.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <set>
#include <string>

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
// Sets the locale variables of the environment for one test; those not named are removed.
class LocaleVariables {
 public:
  using Setting = std::pair<const char*, const char*>;

  explicit LocaleVariables(std::initializer_list<Setting> settings) {
    for (std::size_t i = 0; i < std::size(kNames); ++i) {
      if (const char* value = std::getenv(kNames[i])) saved_[i] = value;
      unsetenv(kNames[i]);
    }
    for (const Setting& setting : settings) setenv(setting.first, setting.second, 1);
  }
  ~LocaleVariables() {
    for (std::size_t i = 0; i < std::size(kNames); ++i) {
      saved_[i] ? setenv(kNames[i], saved_[i]->c_str(), 1) : unsetenv(kNames[i]);
    }
  }
  LocaleVariables(const LocaleVariables&) = delete;
  LocaleVariables& operator=(const LocaleVariables&) = delete;

 private:
  static constexpr const char* kNames[] = {"LC_ALL", "LC_NUMERIC", "LC_TIME", "LC_MONETARY",
                                           "LANG"};
  std::optional<std::string> saved_[std::size(kNames)];
};

TEST(UserLocaleData, ReadsGreek) {
  const LocaleVariables variables({{"LANG", "el_GR.UTF-8"}});
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
    const LocaleVariables variables({{"LC_ALL", name}});
    const LocaleData data = UserLocaleData();
    EXPECT_EQ(data.decimal_separator, u'.');
    EXPECT_EQ(data.short_date_format, u"m/d/yyyy");
    EXPECT_EQ(data.short_time_format, u"h:nn ampm");
    EXPECT_EQ(data.currency, u"$");
  }
}

TEST(UserLocaleData, EachCategoryHasItsLocale) {
  const LocaleVariables variables(
      {{"LC_NUMERIC", "de_DE"}, {"LC_TIME", "pt_BR"}, {"LC_MONETARY", "ja_JP"}, {"LANG", "en_GB"}});
  const LocaleData data = UserLocaleData();
  EXPECT_EQ(data.thousand_separator, u'.');
  EXPECT_EQ(data.long_date_format, u"dddd, d 'de' mmmm 'de' yyyy");
  EXPECT_EQ(data.currency_decimals, 0);
}

#endif

}  // namespace
}  // namespace zentavo::platform
