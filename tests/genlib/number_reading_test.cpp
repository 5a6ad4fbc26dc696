#include "zentavo/genlib/number_reading.h"

#include <gtest/gtest.h>

#include "support/thread_settings.h"
#include "tests/support/error_of.h"
#include "zentavo/framework/exception.h"
#include "zentavo/genlib/number_writing.h"

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
    EXPECT_EQ(testing::ErrorOf<EConvertError>([&] { LcStrToFloat(text); }),
              testing::Quoted(ToUtf8(text)) + " is not a valid floating point value");
  }
  const testing::ThreadSettings points{TFormatSettings()};
  EXPECT_THROW(LcStrToFloat(u"1,5"), EConvertError);
}

TEST(SafeVal, TakesTheNumberAtTheStart) {
  const testing::ThreadSettings scope(testing::CommaSettings());
  const struct {
    StringView text;
    double value;
  } rows[] = {{u" 12.5 kg", 12.5}, {u"-3,25;", -3.25}, {u"5.", 5},   {u"7e2x", 700},
              {u"7ex", 7},         {u"1.2.3", 1.2},    {u".5", 0.5}, {u"kg 12", 0},
              {u"-", 0},           {u"", 0},           {u"1e999", 0}};
  for (const auto& row : rows) EXPECT_EQ(SafeVal(row.text), row.value) << ToUtf8(row.text);
  EXPECT_EQ(XSafeStrToFloat(u" 1,5 "), 1.5);
  EXPECT_EQ(XSafeStrToFloat(u"12.5 kg"), 0);
}

TEST(VarToFloat, CountsNothingAsZero) {
  const testing::ThreadSettings scope(testing::CommaSettings());
  for (const Variant& value : {Variant(), Variant::Null(), Variant(u" ")}) {
    EXPECT_EQ(VarToFloat(value), 0);
  }
  EXPECT_EQ(VarToFloat(u"1,5"), 1.5);
  EXPECT_EQ(VarToFloat(7), 7);
  EXPECT_EQ(VarToFloat(Variant::CurrencyUnits(12500)), 1.25);
  for (const Variant& value : {Variant(u"abc"), Variant(Variant::Array{1})}) {
    EXPECT_THROW(VarToFloat(value), Exception);
    EXPECT_EQ(PrtVarToFloat(value), 0);
  }
}

TEST(NumberWriting, HasAPointWhateverTheLocale) {
  const testing::ThreadSettings scope(testing::CommaSettings());
  EXPECT_EQ(xFrmFloat(u"#,##0.00", 1234.5), u"1,234.50");
  EXPECT_EQ(XFloatToStrDecs(2.675, 2), u"2.68");
  EXPECT_EQ(XFloatToStrDecs(-0.001, 2), u"0.00");
  EXPECT_EQ(FloatToStrPoint(1.5), u"1.5");
}

}  // namespace
}  // namespace zentavo
