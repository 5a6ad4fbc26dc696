#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "tests/formula/parser_host.h"
#include "zentavo/framework/date_time.h"

namespace zentavo {
namespace {

TEST(Builtins, OnNumbers) {
  Check({u"max(3,7,5) -> 7", u"Min(3,7,5) -> 3", u"max() -> 0", u"max(-3,-7) -> -3",
         u"Number('2.5') -> 2.5", u"Number(' ') -> 0",
         u"Number('x') -> ! 'x' is not a valid floating point value", u"Integer(2.5) -> 2",
         u"Integer(3.5) -> 4", u"Integer(-2.5) -> -2",
         u"Integer(1e30) -> ! Invalid floating point operation", u"Trunc(-2.7) -> -2",
         u"TruncUp(2.0000000000001) -> 3", u"TruncUp(2) -> 2", u"TruncUp(5000) -> 5000",
         u"TruncUp(-3) -> -2", u"TruncUp(-2.5) -> -1", u"TruncUp(0) -> 0"});
  Check({u"Round(2.5) -> 3", u"Round(-2.5) -> -3", u"Round(1.25,1) -> 1.3", u"Round(1.2,5) -> 1.2",
         u"Round(1250,-2) -> 1300", u"Round(1,400) -> 1", u"ARound(1.13,0.05)=1.15 -> 1",
         u"ARound(0.15,-0.1) -> 0.2", u"ARound(7,5) -> 5", u"ARound(2.5) -> 3",
         u"ARound(2.4,0) -> 2", u"Abs(-4) -> 4", u"Percent(1,4) -> 25", u"Percent(5,0) -> 0",
         u"DPercent(6,4) -> 50", u"Margin(10,6) -> 40", u"Margin(0,5) -> 0",
         u"Percent(1) -> ! List index out of bounds (1)"});
}

TEST(Builtins, ThatChooseAndTest) {
  Check({u"IF(1, 'x', 1/0) -> 'x'", u"IF(0, 'x', 1)+1 -> 2", u"Case(1,'a','b') -> 'a'",
         u"Case(0,'a') -> ''",
         u"Case(1,5)+1 -> 6",  // the chosen argument whole, type included
         u"Case(1) -> ! Case() : At Least 2 parameters",
         u"Case(1,2,3,4) -> ! Case() : At Least 2 parameters", u"Caseof(2, 1,'a', 2,'b') -> 'b'",
         u"Caseof(3, 1,'a', 2,'b') -> ''", u"Caseof(2.9, 2.1,'a') -> 'a'",
         u"Caseof(2, 1,'a', 2) -> ! Missing parameter",
         u"Caseof(1,2) -> ! Caseof( ): At least 3 parameters"});
  Check({u"InList('b','A','B') -> 1", u"InList(2,1,2) -> 1", u"InList('c','A','B') -> 0",
         u"InStrList('b','A, B ,C') -> 1", u"InStrList('','A,,C') -> 1",
         u"InStrList('d','A,B') -> 0", u"InStrList(1) -> ! InStr() : Wrong number of arguments",
         u"IsEmpty('') -> 1", u"IsEmpty('0') -> 0", u"IsEmpty(0) -> 1", u"IsEmpty() -> 1"});
}

TEST(Builtins, OnText) {
  Check({u"String(1.50) -> '1.5'",
         u"String('abc') -> '0'",  // prints the number of its argument, whatever the type
         u"FString(1234.565,0,2,2) -> '1,234.57'", u"FString(1234.565,12,2,3) -> '    1.234,57'",
         u"FString(1234.5,0,2,4) -> '1,23450'", u"FString(1234.5,3,1,5) -> '1.2345'",
         u"FString(-7,5) -> '   -7'", u"NZString(0) -> ''", u"NZString(1234) -> '1,234'",
         u"NZString(0,'0.00') -> '0.00'", u"Mask('ABC','a*c') -> 1", u"Mask('ABCDE','AB*') -> 1",
         u"Mask('AB','AB*') -> 0", u"Mask('ABC','AB') -> 0", u"Mask('','*') -> 0"});
  Check({u"Include('b','abc') -> 1", u"Include('B','abc') -> 0", u"Copy('abcdef',2,3) -> 'bcd'",
         u"Copy('abc',0,2) -> 'ab'", u"Copy('abc',9,2) -> ''", u"Copy('abc',1,-1) -> ''",
         u"Pos('c','abc') -> 3", u"Pos('x','abc') -> 0", u"Len('Αθήνα') -> 5",
         u"LTrim('  a ') -> 'a '", u"RTrim(' a  ') -> ' a'", u"Replace('aaa','a','aa') -> 'aaaaaa'",
         u"Replace('abc','','x') -> 'abc'", u"Char(937) -> 'Ω'",
         u"QuoteStr('it''s') -> ''it''s''"});
  Check({u"Format('%s has %d, %s left',1.5,2.5,'none') -> '1.5 has 2, none left'",
         u"Format('%d %d',3.5) -> '4 %d'", u"Format('100%',1) -> '100%'",
         u"DateToStr(Date('2024-02-29')) -> '2024-02-29'", u"Date(' ') -> date 0",
         u"Date('nonsense') -> ! 'nonsense' is not a valid date"});
}

TEST(Builtins, StyleFollowsTheCurrentLocale) {
  Check({u"FString(1234.5,0,2) -> '1.234,50'", u"FString(1234.5,0,2,9) -> '1.234,50'",
         u"String(1.5) -> '1.5'", u"Number('1,5')+Number('1.5') -> 3", u"'1.5'=1.5 -> 1"},
        testing::CommaSettings());
}

TEST(Builtins, CountTheirArguments) {
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

TEST(Builtins, CurTimeIsTheTimeOfDay) {
  const double before = std::floor(Time() * 86400);
  TXParser parser;
  parser.SetFormula(u"CurTime");
  parser.Execute();
  const double read = StrToTime(parser.CResult.ResultStr) * 86400;
  EXPECT_TRUE(std::round(read) >= before || before > 86390) << ToUtf8(parser.CResult.ResultStr);
}

TEST(Builtins, SpellFollowsTheParsersLanguage) {
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
