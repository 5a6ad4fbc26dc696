#include "zentavo/formula/parser.h"

#include <gtest/gtest.h>

#include <cstring>
#include <thread>
#include <vector>

#include "tests/formula/parser_host.h"

namespace zentavo {
namespace {

TEST(Lexer, SplitsTextIntoTokens) {
  Check({u"1<>2 -> 1", u"2<=2 -> 1", u"2>=3 -> 0", u"2e-3 -> 0.002", u"\t 7  -> 7",
         u"2><3 -> ! Cannot Perform the Comparison",  // two tokens
         u"2=<3 -> ! Cannot Perform the Comparison",
         u"2e+3 -> ! '2e' is not a valid floating point value",
         u"1E2E3 -> ! '1E2E3' is not a valid floating point value",
         u"5. -> ! '5.' is not a valid floating point value"});
  Check({u"1.2.3 -> ! Unknown field/variable/function : .",
         u"1\n+1 -> ! Unknown field/variable/function : \n",
         u"# -> ! Unknown field/variable/function : #",
         u"_x^ -> ! Unknown field/variable/function : _x^",
         u"\x01\x01\x01 -> ! Unknown field/variable/function : \x01",
         u"%x -> ! Unknown field/variable/function : %x"});
  Check({u"'It''s' -> 'It's'", u"'''' -> '''", u"'' -> ''", u"'abc -> ! ' Expected",
         u"' -> ! ' Expected", u"Item.Code -> 'A-7'", u"τιμή*2 -> 25", u"1 plus 1 -> 2",
         u"%1 -> ! List index out of bounds (0)"});
  EXPECT_EQ(Evaluate(StringView(u"1\0+1", 4)), u"1");  // a zero ends the text
  EXPECT_EQ(Evaluate(u"\xD800"), u"! Unknown field/variable/function : \xD800");
}

TEST(Grammar, BindsByItsLevels) {
  Check({u"2+3*4 -> 14", u"(2+3)*4 -> 20", u"1<2=1 -> 1", u"10-3-2 -> 5", u"2*3-8/4 -> 4",
         u"1=1 and 2=2 -> 0",  // and binds like *: 1 = (1 and 2) = 2
         u"(1=1) and (2=2) -> 1", u"0 and 0 or 1 -> 1", u"1 Xor 1 -> 0", u"1 ANDNOT 0 -> 1",
         u"2 & 3 | 0 -> 1", u"!0 -> 1", u"!5 -> 0", u"-2*-3 -> 6", u"-max(1,2)+!(0) -> -1"});
  Check({u"--1 -> ! Number Expected", u"*2 -> ! Number Expected",
         u"1+ -> ! Cannot Perform the addition", u"(1 -> ! Close Parenthesis Needed",
         u"max(1 2) -> ! , or ) Expected", u"max(1 -> ! , or ) Expected", u"max (1,\t2) -> 2",
         u"() -> undefined", u" -> undefined",
         u"1 2 -> 1",  // what follows a complete expression is ignored
         u"1) -> 1"});
}

TEST(Operators, ConvertAndCompareByType) {
  Check({u"1/0 -> 0", u"'a'+'b' -> 'ab'",
         u"'5'+1 -> '5'",  // the sum goes into the string's number
         u"1+'5' -> 6", u"'3'*2+0 -> '3'", u"2-' ' -> 2", u"'a'<'b' -> 1",
         u"'B'<'a' -> 1",  // ordinal
         u"'10'=10 -> 1", u"9<'10' -> 1", u"''=0 -> 1", u"Price*Qty -> 50", u"Qty=4 -> 1"});
  Check({u"2*'x' -> ! 'x' is not a valid floating point value", u"'a'*'b' -> ! Number Expected",
         u"-'a' -> ! Number Expected", u"!'a' -> ! Number Expected",
         u"1 and 'x' -> ! Number Expected", u"1 or () -> ! Number Expected"});
  Check({u"Date('2024-03-01')-1 -> date 45351", u"Date('2024-03-01')*2 -> date 90704",
         u"Date('2024-03-01')-Date('2024-02-01') -> date 29",
         u"Date('2024-03-01')>Date('2024-02-01') -> 1",
         u"Date('2024-03-01')/2 -> ! Number Expected",
         u"Date('2024-03-01')+'1' -> ! Cannot Perform the addition",
         u"'a'+Date('2024-03-01') -> ! Cannot Perform the addition"});
  Host parser;
  parser.SetFormula(u"'5'+1");
  parser.Execute();
  EXPECT_EQ(parser.CResult.ResultNum, 6);
}

TEST(TXParser, DebugTextRendersWhatWasComputed) {
  const testing::ThreadSettings invariant{TFormatSettings()};
  const std::pair<const char16_t*, const char16_t*> cases[] = {
      {u"2+3*4", u"2+3*4"},    {u"(2+3)*-4", u"(2+3)*-4"},
      {u"1 or 2", u"1"},      // left as it was
      {u"Qty*Price", u"4*"},  // an integer variable has a text, a number variable none
      {u"max(1,2)+1", u"+1"},  {u"IF(1,'x','y')", u"(x)"},
      {u"1<>2.50", u"1<>2.5"}, {u"IF(Qty>1,Qty,0)+1", u"(4)+1"},
  };
  for (const auto& [formula, debug] : cases) {
    Host parser;
    parser.SetFormula(formula);
    for (int run = 1; run <= 3; ++run) {
      parser.Execute();
      EXPECT_EQ(ToUtf8(parser.CResult.DebugStr.Text()), ToUtf8(debug)) << run << ToUtf8(formula);
    }
    const TResult kept = parser.CResult;
    parser.SetFormula(u"1");
    parser.Execute();
    EXPECT_EQ(ToUtf8(kept.DebugStr.Text()), ToUtf8(debug));
  }
}

TEST(TXParser, HostSuppliesFunctionsAndVariables) {
  Check({u"Double(Price) -> 25", u"double(double(1)) -> 4", u"Concat('a',Item.Code,'b') -> 'aA-7b'",
         u"Concat -> ''", u"Rate+1 -> 25", u"Len('four') -> 4", u"known+1 -> 6"});
}

TEST(TXParser, RepeatedRunsSeeChangedValues) {
  Host parser;
  parser.SetFormula(u"IF(Qty>10, Price*0.9, Price)+Rate");
  for (int run = 0; run < 5; ++run) {
    parser.quantity = run % 2 == 0 ? 20 : 1;
    parser.price = run;
    parser.rate = 100 * run;
    parser.Execute();
    EXPECT_DOUBLE_EQ(parser.CResult.ResultNum, run * (run % 2 == 0 ? 0.9 : 1.0) + 100 * run);
  }
}

TEST(TXParser, VariablesAreReadInTheirOrder) {
  // The function changes the variable that was read before it.
  class Changing : public TXParser {
   public:
    void UserInitialize() override {
      InsertIdent(u"a", tokPtrVariable, 0, resNumber, &a);
      DefineUserFunction(u"Set", 1, resNumber);
    }
    void EvaluateUserFunction(std::int32_t, TArguments&, TResult& Result) override {
      a = 100;
      Result.ResultNum = 1;
    }
    double a = 0;
  };
  Changing parser;
  parser.SetFormula(u"a*10+Set()+a");
  for (int run = 0; run < 4; ++run) {
    parser.a = 1;
    parser.Execute();
    EXPECT_EQ(parser.CResult.ResultNum, 111) << run;
  }
}

TEST(TXParser, FollowsChangedTablesAndHooks) {
  class Resolving : public TXParser {
   public:
    bool UserResolve() override {
      if (!mine || CToken.TokenValue != u"x") return false;
      CToken.TokenType = tokString;
      CToken.TokenValue = u"resolved";
      return true;
    }
    bool mine = false;
  };
  double first = 1, second = 2;
  Resolving parser;
  parser.InsertIdent(u"x", tokPtrVariable, 0, resNumber, &first);
  parser.InsertIdent(u"x", tokPtrVariable, 0, resNumber, &second);  // the first entry stays
  parser.SetFormula(u"x");
  for (int run = 0; run < 4; ++run) EXPECT_EQ(RunOnce(parser), u"1");
  parser.mine = true;
  for (int run = 0; run < 4; ++run) EXPECT_EQ(RunOnce(parser), u"'resolved'");
  parser.mine = false;
  for (int run = 0; run < 4; ++run) EXPECT_EQ(RunOnce(parser), u"1");
  parser.RemoveIdent(u"X");
  parser.RemoveIdent(u"nobody");
  EXPECT_EQ(RunOnce(parser), u"! Unknown field/variable/function : x");
  parser.InsertIdent(u"x", tokPtrVariable, 0, resNumber, &second);
  EXPECT_EQ(RunOnce(parser), u"2");
}

TEST(TXParser, ParametersReadTheHostsArguments) {
  TArguments arguments;
  arguments.AddNew().ResultType = resNumber;
  arguments.Items(0).ResultNum = 5;
  arguments.AddNew().ResultType = resString;
  arguments.Items(1).ResultStr = u"five";
  TXParser parser;
  parser.SetParamsArgs(&arguments);
  parser.SetFormula(u"%2+'='+FString(%1)");
  for (int run = 0; run < 2; ++run) EXPECT_EQ(RunOnce(parser), u"'five=5'");
  parser.SetFormula(u"%10");  // one digit is read; what follows is ignored
  EXPECT_EQ(RunOnce(parser), u"5");
  parser.SetFormula(u"%3");
  EXPECT_EQ(RunOnce(parser), u"! List index out of bounds (2)");
}

TEST(TXParser, ErrorsSayWhereAndWhat) {
  struct Fault {
    const char16_t* formula;
    std::int32_t position;
    const char16_t* name;
  };
  for (const Fault& fault :
       {Fault{u"1 + Nobody * 2", 5, u"Nobody"}, Fault{u"  'a", 3, u""}, Fault{u"1 and 'x'", 3, u""},
        Fault{u"2 + 3e", 5, u"3e"}, Fault{u"1 + Len(1, 2)", 5, u"Len"}, Fault{u"(1", 3, u""}}) {
    TXParser parser;
    parser.SetFormula(fault.formula);
    try {
      parser.Execute();
      ADD_FAILURE() << ToUtf8(fault.formula);
    } catch (const EXParserError& error) {
      EXPECT_EQ(error.Position(), fault.position) << ToUtf8(fault.formula);
      EXPECT_EQ(error.Name(), fault.name) << ToUtf8(fault.formula);
    }
  }
}

TEST(TXParser, FailedRunLeavesTheFormulaUncompiled) {
  Host parser;
  parser.SetFormula(u"7+Late");
  EXPECT_TRUE(RunOnce(parser).starts_with(u"!"));
  EXPECT_EQ(parser.CResult.ResultNum, 7);  // what was computed so far
  double late = 3;
  parser.InsertIdent(u"Late", tokPtrVariable, 0, resNumber, &late);
  EXPECT_EQ(RunOnce(parser), u"10");
  EXPECT_EQ(parser.Formula(), u"7+Late");
}

TEST(TXParser, ReentryIsRefused) {
  class Reentrant : public TXParser {
   public:
    void UserInitialize() override { DefineUserFunction(u"Again", 1, resNumber); }
    void EvaluateUserFunction(std::int32_t, TArguments&, TResult&) override { SetFormula(u"1"); }
  };
  Reentrant parser;
  parser.SetFormula(u"Again()");
  EXPECT_EQ(RunOnce(parser), u"! Formula is being evaluated");
}

TEST(CompiledForm, HasTheSlotSizesThatHostsKeep) {
  Host parser;
  parser.SetFormula(u" 1.5 + known  * Price ");
  parser.Execute();
  const String& form = parser.Formula();
  ASSERT_EQ(form.size(), 1u + 9 + 2 + 5 + 2 + 6);
  EXPECT_EQ(form.substr(0, 2), u"$\x02");
  double value;
  std::memcpy(&value, form.data() + 2, sizeof(value));
  EXPECT_EQ(value, 1.5);
  EXPECT_EQ(form.substr(10, 3), u"+ \x01");
  EXPECT_EQ(form.substr(17), u"* Price ");
}

TEST(CompiledForm, ConstantReplacesTheCall) {
  Host parser;
  parser.SetFormula(u"1+Constant(2)*2");
  for (int run = 0; run < 4; ++run) EXPECT_EQ(RunOnce(parser), u"85");
  EXPECT_EQ(parser.calls, 1);
}

TEST(CompiledForm, IsCheckedBeforeItIsUsed) {
  Check({u"$12 -> 0",  // a plain number in compiled text counts 0
         u"$'a' -> 'a'", u"$\x03\x02xy -> 'xy'", u"$\x03\x03xy -> ! Invalid compiled formula",
         u"$\x03 -> ! Invalid compiled formula", u"$\x02\x01\x01\x01 -> ! Invalid compiled formula",
         u"$\x01\x01 -> ! Invalid compiled formula",
         u"$\x04\x10\x10\x10\x10 -> ! Invalid compiled formula",
         u"$\x04\x10 -> ! Invalid compiled formula", u"$ -> undefined"});
  const TIdentInfo* absolute = TXParser::ParserFunctions().Lookup(u"aBs");
  String form = u"$\x04";
  form.resize(6);
  std::memcpy(&form[2], &absolute, sizeof(absolute));
  EXPECT_EQ(Evaluate(form + u"('1')"), u"0");
}

TEST(TXParser, NestingHasALimitAndCostsNoStack) {
  const auto nested = [](std::size_t depth, StringView open, StringView close) {
    String text;
    for (std::size_t i = 0; i < depth; ++i) text += open;
    text += u"1";
    for (std::size_t i = 0; i < depth; ++i) text += close;
    return text;
  };
  for (const auto& [open, close] : {std::pair{u"(", u")"}, std::pair{u"-(", u")"},
                                    std::pair{u"1+(2*(", u"))"}, std::pair{u"max(0,", u")"}}) {
    const std::size_t levels = StringView(close).size();
    EXPECT_NE(Evaluate(nested(kMaxFormulaNesting / levels, open, close)), u"! Formula too complex");
    EXPECT_EQ(Evaluate(nested(kMaxFormulaNesting / levels + 1, open, close)),
              u"! Formula too complex");
  }
  EXPECT_EQ(Evaluate(String(10'000'000, u'(')), u"! Formula too complex");
  // A long chain is no nesting.
  EXPECT_EQ(Evaluate(nested(200'000, u"1+", u"")), u"200001");
}

TEST(TXParser, ParsersOnDifferentThreadsShareTheTable) {
  std::vector<std::jthread> threads;
  for (int thread = 0; thread < 4; ++thread) {
    threads.emplace_back([thread] {
      for (int run = 0; run < 200; ++run) {
        TXParser parser;
        parser.SetFormula(u"max(1,2)*Round(2.5)+" + IntToStr(thread));
        parser.Execute();
        EXPECT_EQ(parser.CResult.ResultNum, 6 + thread);
      }
    });
  }
}

TEST(TIdentList, FindsNamesWithoutRegardToCase) {
  auto list = std::make_unique<TIdentList>();
  for (int i = 0; i < 300; ++i) {
    InsertInList(*list, u"Όνομα" + IntToStr(i), tokUserVariable, i, resNumber);
  }
  const TIdentInfo* info = nullptr;
  ASSERT_TRUE(FindInList(*list, u"όΝΟΜΑ257", info));
  EXPECT_EQ(info->IdentId, 257);
  EXPECT_FALSE(FindInList(*list, u"Όνομα300", info));
  EXPECT_EQ(info->IdentId, 257);
  FreeList(list);
  EXPECT_EQ(list, nullptr);
}

}  // namespace
}  // namespace zentavo
