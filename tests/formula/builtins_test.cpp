#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "support/thread_settings.h"
#include "zentavo/formula/parser.h"
#include "zentavo/framework/date_time.h"
#include "zentavo/framework/exception.h"
#include "zentavo/framework/format_settings.h"
#include "zentavo/framework/number_text.h"

namespace zentavo {
namespace {

String Evaluate(StringView formula) {
  TXParser parser;
  try {
    parser.SetFormula(formula);
    parser.Execute();
  } catch (const Exception& error) {
    return u"! " + error.Message();
  }
  const TResult& result = parser.CResult;
  if (result.ResultType == resString) return u"'" + result.ResultStr + u"'";
  if (result.ResultType == resUndefined) return u"undefined";
  return (result.ResultType == resDate ? u"date " : u"") + FloatToStr(result.ResultNum);
}

struct Case {
  const char16_t* formula;
  const char16_t* value;
};

void Check(const std::vector<Case>& cases) {
  for (const Case& row : cases) {
    EXPECT_EQ(ToUtf8(Evaluate(row.formula)), ToUtf8(row.value)) << ToUtf8(row.formula);
  }
}

class Builtins : public ::testing::Test {
 protected:
  testing::ThreadSettings invariant_{TFormatSettings()};
};

TEST_F(Builtins, OnNumbers) {
  Check({
      {u"max(3,7,5)", u"7"},
      {u"Min(3,7,5)", u"3"},
      {u"max()", u"0"},
      {u"max(-3,-7)", u"-3"},
      {u"Number('2.5')", u"2.5"},
      {u"Number(' ')", u"0"},
      {u"Number('x')", u"! 'x' is not a valid floating point value"},
      {u"Integer(2.5)", u"2"},
      {u"Integer(3.5)", u"4"},
      {u"Integer(-2.5)", u"-2"},
      {u"Integer(1e30)", u"! Invalid floating point operation"},
      {u"Trunc(-2.7)", u"-2"},
      {u"TruncUp(2.0000000000001)", u"3"},
      {u"TruncUp(2)", u"2"},
      {u"TruncUp(2.1)", u"3"},
      {u"TruncUp(5000)", u"5000"},
      {u"TruncUp(-3)", u"-2"},
      {u"TruncUp(-2.5)", u"-1"},
      {u"TruncUp(-0.5)", u"0"},
      {u"TruncUp(0)", u"0"},
      {u"Round(2.5)", u"3"},
      {u"Round(-2.5)", u"-3"},
      {u"Round(1.25,1)", u"1.3"},
      {u"Round(1.2,5)", u"1.2"},
      {u"Round(1250,-2)", u"1300"},
      {u"Round(1,400)", u"1"},
      {u"ARound(1.13,0.05)", u"1.15"},
      {u"ARound(0.15,-0.1)", u"0.2"},
      {u"ARound(7,5)", u"5"},
      {u"ARound(2.5)", u"3"},
      {u"ARound(2.4,0)", u"2"},
      {u"Abs(-4)", u"4"},
      {u"Percent(1,4)", u"25"},
      {u"Percent(5,0)", u"0"},
      {u"DPercent(6,4)", u"50"},
      {u"Margin(10,6)", u"40"},
      {u"Margin(0,5)", u"0"},
      {u"Percent(1)", u"! List index out of bounds (1)"},
  });
  EXPECT_EQ(Evaluate(u"ARound(1.13,0.05)=1.15"), u"1");
}

TEST_F(Builtins, ThatChooseAndTest) {
  Check({
      {u"IF(1, 'x', 1/0)", u"'x'"},
      {u"IF(0, 'x', 1)+1", u"2"},
      {u"Case(1,'a','b')", u"'a'"},
      {u"Case(0,'a')", u"''"},
      {u"Case(1,5)+1", u"6"},  // the chosen argument whole, type included
      {u"Case(1)", u"! Case() : At Least 2 parameters"},
      {u"Case(1,2,3,4)", u"! Case() : At Least 2 parameters"},
      {u"Caseof(2, 1,'a', 2,'b')", u"'b'"},
      {u"Caseof(3, 1,'a', 2,'b')", u"''"},
      {u"Caseof(2.9, 2.1,'a')", u"'a'"},
      {u"Caseof(2, 1,'a', 2)", u"! Missing parameter"},
      {u"Caseof(1,2)", u"! Caseof( ): At least 3 parameters"},
      {u"InList('b','A','B')", u"1"},
      {u"InList(2,1,2)", u"1"},
      {u"InList('c','A','B')", u"0"},
      {u"InStrList('b','A, B ,C')", u"1"},
      {u"InStrList('','A,,C')", u"1"},
      {u"InStrList('d','A,B')", u"0"},
      {u"InStrList(1)", u"! InStr() : Wrong number of arguments"},
      {u"IsEmpty('')", u"1"},
      {u"IsEmpty('0')", u"0"},
      {u"IsEmpty(0)", u"1"},
      {u"IsEmpty()", u"1"},
  });
}

TEST_F(Builtins, OnText) {
  Check({
      {u"String(1.50)", u"'1.5'"},
      {u"String('abc')", u"'0'"},  // prints the number of its argument, whatever the type
      {u"FString(1234.565,0,2,2)", u"'1,234.57'"},
      {u"FString(1234.565,12,2,3)", u"'    1.234,57'"},
      {u"FString(1234.5,0,2,4)", u"'1,23450'"},
      {u"FString(1234.5,3,1,5)", u"'1.2345'"},
      {u"FString(-7,5)", u"'   -7'"},
      {u"NZString(0)", u"''"},
      {u"NZString(1234)", u"'1,234'"},
      {u"NZString(0,'0.00')", u"'0.00'"},
      {u"Mask('ABC','a*c')", u"1"},
      {u"Mask('ABCDE','AB*')", u"1"},
      {u"Mask('AB','AB*')", u"0"},
      {u"Mask('ABC','AB')", u"0"},
      {u"Mask('','*')", u"0"},
      {u"Include('b','abc')", u"1"},
      {u"Include('B','abc')", u"0"},
      {u"Copy('abcdef',2,3)", u"'bcd'"},
      {u"Copy('abc',0,2)", u"'ab'"},
      {u"Copy('abc',9,2)", u"''"},
      {u"Copy('abc',1,-1)", u"''"},
      {u"Pos('c','abc')", u"3"},
      {u"Pos('x','abc')", u"0"},
      {u"Len('Αθήνα')", u"5"},
      {u"LTrim('  a ')", u"'a '"},
      {u"RTrim(' a  ')", u"' a'"},
      {u"Replace('aaa','a','aa')", u"'aaaaaa'"},
      {u"Replace('abc','','x')", u"'abc'"},
      {u"Char(937)", u"'Ω'"},
      {u"QuoteStr('it''s')", u"''it''s''"},
      {u"Format('%s has %d, %s left',1.5,2.5,'none')", u"'1.5 has 2, none left'"},
      {u"Format('%d %d',3.5)", u"'4 %d'"},
      {u"Format('100%',1)", u"'100%'"},
      {u"DateToStr(Date('2024-02-29'))", u"'2024-02-29'"},
      {u"Date(' ')", u"date 0"},
      {u"Date('nonsense')", u"! 'nonsense' is not a valid date"},
  });
}

TEST_F(Builtins, StyleFollowsTheCurrentLocale) {
  SetThreadFormatSettings(testing::CommaSettings());
  Check({
      {u"FString(1234.5,0,2)", u"'1.234,50'"},
      {u"FString(1234.5,0,2,9)", u"'1.234,50'"},
      {u"String(1.5)", u"'1.5'"},
      {u"Number('1,5')+Number('1.5')", u"3"},
      {u"'1.5'=1.5", u"1"},
      {u"1.5*2", u"3"},
  });
}

TEST_F(Builtins, CountTheirArguments) {
  struct Count {
    const char16_t* name;
    int low, high;  // beyond 5 there is no upper bound
  };
  const std::vector<Count> counts = {
      {u"Date", 1, 1},     {u"String", 1, 1},    {u"FString", 1, 4}, {u"NZString", 1, 2},
      {u"Number", 1, 1},   {u"Integer", 1, 1},   {u"Mask", 2, 2},    {u"Include", 2, 2},
      {u"Copy", 3, 3},     {u"Pos", 2, 2},       {u"IF", 3, 3},      {u"Len", 1, 1},
      {u"Spell", 1, 3},    {u"Trunc", 1, 9},     {u"TruncUp", 1, 9}, {u"Round", 1, 2},
      {u"ARound", 1, 2},   {u"DateToStr", 1, 1}, {u"InList", 2, 9},  {u"Format", 2, 9},
      {u"LTrim", 1, 1},    {u"RTrim", 1, 1},     {u"Replace", 3, 3}, {u"Char", 1, 1},
      {u"QuoteStr", 1, 1}, {u"Abs", 1, 1},
  };
  for (const Count& row : counts) {
    const String error = u"! " + String(row.name) + u"() : Wrong number of arguments";
    String call = row.name;
    for (int count = 0; count <= 5; ++count) {
      if (count > 0) call += count == 1 ? u"(0" : u",0";
      const String value = Evaluate(count == 0 ? call : call + u")");
      EXPECT_EQ(value == error, count < row.low || count > row.high) << ToUtf8(call);
    }
  }
}

TEST_F(Builtins, CurTimeIsTheTimeOfDay) {
  const double before = std::floor(Time() * 86400);
  TXParser parser;
  parser.SetFormula(u"CurTime");
  parser.Execute();
  const double read = StrToTime(parser.CResult.ResultStr) * 86400;
  EXPECT_TRUE(std::round(read) >= before || before > 86390) << ToUtf8(parser.CResult.ResultStr);
}

TEST_F(Builtins, SpellFollowsTheParsersLanguage) {
  TXParser parser;
  parser.SetFormula(u"Spell(2)+'|'+Spell(2,'','EN')");
  String greek, english;
  try {
    parser.Execute();
    greek = parser.CResult.ResultStr;
    parser.SetLangExt(u"EN");
    parser.Execute();
    english = parser.CResult.ResultStr;
  } catch (const Exception& error) {
    EXPECT_EQ(error.Message(), u"Amounts in words need the system's language data (icu.dll)");
    return;
  }
  EXPECT_EQ(ToUtf8(greek), "ΔΎΟ|two");
  EXPECT_EQ(ToUtf8(english), "two|two");
}

}  // namespace
}  // namespace zentavo
