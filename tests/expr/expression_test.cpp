#include "zentavo/expr/expression.h"

#include <gtest/gtest.h>

#include "tests/support/sides.h"
#include "zentavo/expr/tokenizer.h"
#include "zentavo/foundation/errors.h"
#include "zentavo/framework/variant_convert.h"

namespace zentavo {
namespace {

std::string Symbol(const TInstruction& instruction) {
  const std::string value = ToUtf8(VarToStr(instruction.Value()));
  switch (instruction.Operator()) {
    case opString: return std::string("'").append(value).append("'");
    case opNumber: return value;
    case opVariable: return std::string(1, static_cast<char>(instruction.Index()));
    default: return ToUtf8(OperatorName(instruction.Operator()).substr(2));
  }
}

std::string Dump(const TCodeList& code) {
  std::string dump;
  for (const TInstruction& instruction : code) {
    if (!dump.empty()) dump += ' ';
    dump += Symbol(instruction);
  }
  return dump;
}

class TExpressionTest : public ::testing::Test {
 protected:
  TExpressionTest() {
    for (const char16_t name : StringView(u"abc")) variables_.AddValue(String(1, name), name);
    functions_.AddValue(u"f", 1);
  }
  // The instructions, then the error if there was one.
  std::string Compile(StringView source) {
    code_.clear();
    try {
      expression_.CompileExpression(source, code_, &variables_, &functions_);
    } catch (const EZentavoError& error) {
      return Dump(code_) + " ! " + error.what();
    }
    return Dump(code_);
  }

  TStringList variables_;
  TStringList functions_;
  TCodeList code_;
  TExpression expression_;
};

TEST_F(TExpressionTest, CompilesByLevels) {
  const auto compile = [this](StringView source) { return Compile(source); };
  testing::ExpectRows({u"   -> ", u"1 + 2 * 3 -> 1 2 3 Multiply Add", u"a = b + 1 -> a b Eq 1 Add",
                       u"a / b * c -> a b c Multiply Divide", u"a * b / c -> a b Multiply c Divide",
                       u"a - b - c -> a b Subtract c Subtract", u"a or b and c -> a b Or c And",
                       u"a < b and b >= c -> a b Lt b c Ge And", u"a div b mod c -> a b Div c Mod",
                       u"-a * b -> a Negative b Multiply", u"3 - -2 -> 3 2 Negative Subtract",
                       u"a * (-b) -> a b Negative Multiply", u"a = -b -> a b Negative Eq"},
                      compile);
  testing::ExpectRows(
      {u"not not a -> Not a Not", u"- -3 -> Negative 3 Negative",
       u"-f('abc') -> Negative 'abc' Function", u"not f(a) -> Not a Function",
       u"f(a, b + 1) -> a b 1 Add Function", u"f(a, -b) - c -> a b Negative Function c Subtract",
       u"f - 1 -> Function 1 Negative", u"f() -> Function", u"(1, 2, (3)) -> 1 2 3",
       u"a (b) -> a b", u"#65 + null -> 'A' '' Add"},
      compile);
  testing::ExpectRows(
      {u"a b -> a b ! Missing operator or semicolon",
       u"(a) b -> a b ! Missing operator or semicolon", u") ->  ! Unexpected symbol ')'",
       u"a, b -> a ! Unexpected symbol ','", u"(a -> a ! Expected symbol ')'",
       u"a + ? -> a ! Unexpected symbol '?'", u"_a ->  ! Unexpected symbol '_'"},
      compile);
}

TEST_F(TExpressionTest, AppendsToTheCodeList) {
  Compile(u"a + b");
  TTokenizer tokenizer;
  expression_.CompileExpression(u"-1", code_, tokenizer);
  EXPECT_EQ(Dump(code_), "a b Add 1 Negative");
}

TEST_F(TExpressionTest, CompilesPartsOfATokenList) {
  TTokenizer tokenizer;
  TTokenList tokens;
  tokenizer.Tokenize(u"a + b * c", tokens, &variables_, &functions_);
  EXPECT_THROW(TExpression().GetTokenList(tokens, 0, 0), EZentavoError);
  Compile(u"");
  expression_.GetTokenList(tokens, 2, 4);
  expression_.GetTokenList(tokens, 0, -1);
  EXPECT_EQ(Dump(code_), "b c Multiply");
  EXPECT_THROW(expression_.GetTokenList(tokens, 3, 5), EListError);
}

TEST_F(TExpressionTest, TakesTextsOfAnyLengthAndDepthToTheLimit) {
  const auto wrapped = [](std::int32_t depth) {
    const auto count = static_cast<std::size_t>(depth);
    return String(count, u'(') + u"a" + String(count, u')');
  };
  EXPECT_EQ(Compile(wrapped(kMaxParenthesisNesting)), "a");
  EXPECT_EQ(Compile(wrapped(kMaxParenthesisNesting + 1)), " ! Parentheses nested too deeply");
  String chain = u"1";
  for (int term = 0; term < 100'000; ++term) chain += u"- -a";
  EXPECT_EQ(Compile(chain).substr(0, 28), "1 a Negative Subtract a Nega");
  EXPECT_EQ(code_.size(), 300'001U);
}

}  // namespace
}  // namespace zentavo
