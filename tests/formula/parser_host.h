// Formulas as tables: a host with one of everything, and runs of a formula that must agree.
#pragma once

#include <gtest/gtest.h>

#include <initializer_list>

#include "tests/support/sides.h"
#include "tests/support/thread_settings.h"
#include "zentavo/formula/parser.h"
#include "zentavo/framework/exception.h"
#include "zentavo/framework/number_text.h"

namespace zentavo {

// A host with one of everything a descendant can supply.
class Host : public TXParser {
 public:
  static constexpr std::int32_t kDouble = 1, kConcat = 2, kReplaced = 3, kRate = 7;

  void UserInitialize() override {
    DefineUserFunction(u"Double", kDouble, resNumber);
    DefineUserFunction(u"Concat", kConcat, resString);
    DefineUserFunction(u"Constant", kReplaced, resNumber);
    DefineUserVariable(u"Rate", kRate, resNumber);
    DefineUserVariable(u"Len", 99, resNumber);  // a built-in's name: never found
    InsertIdent(u"Price", tokPtrVariable, 0, resNumber, &price);
    InsertIdent(u"Τιμή", tokPtrVariable, 0, resNumber, &price);
    InsertIdent(u"Qty", tokPtrVariable, 0, resInteger, &quantity);
    InsertIdent(u"Item.Code", tokPtrVariable, 0, resString, &code);
  }
  void EvaluateUserFunction(std::int32_t FunctionId, TArguments& Args, TResult& Result) override {
    ++calls;
    if (FunctionId == kDouble) Result.ResultNum = 2 * Args.Items(0).ResultNum;
    if (FunctionId == kConcat) {
      for (std::int32_t i = 0; i < Args.Count(); ++i) Result.ResultStr += Args.Items(i).ResultStr;
    }
    if (FunctionId == kReplaced) {
      Result.ResultNum = 42;
      ReplaceNumber(42, KeepPtr());
    }
  }
  void EvaluateUserVariable(std::int32_t, TResult& Result) override { Result.ResultNum = rate; }
  bool CanEvaluate(StringView Name, PResult Result, std::int32_t* Data) override {
    if (Result == nullptr) {
      if (!Name.starts_with(u"known")) return false;
      *Data = static_cast<std::int32_t>(Name.size());
      return true;
    }
    Result->ResultType = resNumber;
    Result->ResultNum = *Data;
    return true;
  }

  double price = 12.5;
  std::int32_t quantity = 4;
  String code = u"A-7";
  double rate = 24;
  int calls = 0;
};

inline String Show(const TResult& result) {
  switch (result.ResultType) {
    case resUndefined: return u"undefined";
    case resString: return u"'" + result.ResultStr + u"'";
    case resDate: return u"date " + FloatToStr(result.ResultNum);
    default: return FloatToStr(result.ResultNum);
  }
}

// The value, or the error's text, of one run.
inline String RunOnce(TXParser& parser) {
  try {
    parser.Execute();
    return Show(parser.CResult);
  } catch (const Exception& error) {
    return u"! " + error.Message();
  }
}

// The value of a fresh parser's run, which the later runs (compiled, recorded, repeated) and a
// parser that gets the compiled form must agree with.
inline String Evaluate(StringView formula, const TFormatSettings& settings = {}) {
  const testing::ThreadSettings scope(settings);
  Host parser;
  parser.SetFormula(formula);
  const String first = RunOnce(parser);
  const String first_debug = parser.CResult.DebugStr;
  const bool compiled = !first.starts_with(u"!") && !formula.empty();
  if (!formula.starts_with(u'$')) {
    EXPECT_EQ(parser.Formula().starts_with(u'$'), compiled) << ToUtf8(formula);
  }
  for (int run = 2; run <= 4; ++run) {
    EXPECT_EQ(ToUtf8(RunOnce(parser)), ToUtf8(first)) << "run " << run << " of " << ToUtf8(formula);
    if (compiled) {
      EXPECT_EQ(ToUtf8(parser.CResult.DebugStr.Text()), ToUtf8(first_debug)) << ToUtf8(formula);
    }
  }
  if (compiled) {
    Host other;
    other.SetFormula(parser.Formula());
    EXPECT_EQ(ToUtf8(RunOnce(other)), ToUtf8(first)) << "compiled form of " << ToUtf8(formula);
  }
  return first;
}

// Each row is "formula -> value"; errors begin with "! ".
inline void Check(std::initializer_list<StringView> rows, const TFormatSettings& settings = {}) {
  for (const StringView row : rows) {
    const auto [formula, value] = testing::Sides(row);
    EXPECT_EQ(ToUtf8(Evaluate(formula, settings)), ToUtf8(value)) << ToUtf8(row);
  }
}

}  // namespace zentavo
