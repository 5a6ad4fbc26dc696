#include "zentavo/genlib/number_reading.h"

#include <gtest/gtest.h>

#include "support/thread_settings.h"
#include "zentavo/framework/exception.h"

namespace zentavo {
namespace {

TEST(LcStrToFloat, TakesEitherSeparator) {
  const testing::ThreadSettings scope(testing::CommaSettings());
  EXPECT_EQ(LcStrToFloat(u"1.5"), 1.5);
  EXPECT_EQ(LcStrToFloat(u" 1,5 "), 1.5);
  EXPECT_EQ(LcStrToFloat(u"-2E3"), -2000);
  EXPECT_EQ(LcStrToFloat(u""), 0);
  EXPECT_EQ(LcStrToFloat(u" \t"), 0);
}

TEST(LcStrToFloat, RaisesForWhatIsNoNumber) {
  const testing::ThreadSettings scope(testing::CommaSettings());
  for (const char16_t* text :
       {u"1.234,5", u"5.", u"5,", u"2e", u"1E2E3", u"abc", u"1 2", u"1e999"}) {
    try {
      LcStrToFloat(text);
      ADD_FAILURE() << ToUtf8(text);
    } catch (const EConvertError& error) {
      EXPECT_EQ(error.what(), "'" + ToUtf8(text) + "' is not a valid floating point value");
    }
  }
}

TEST(LcStrToFloat, RefusesACommaWherePointsRule) {
  const testing::ThreadSettings scope{TFormatSettings()};
  EXPECT_THROW(LcStrToFloat(u"1,5"), EConvertError);
}

}  // namespace
}  // namespace zentavo
