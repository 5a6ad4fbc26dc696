#include "zentavo/expr/tokenizer.h"

#include <gtest/gtest.h>

#include <random>

#include "tests/support/sides.h"
#include "tests/support/thread_settings.h"
#include "zentavo/expr/parse_lib.h"
#include "zentavo/framework/exception.h"
#include "zentavo/framework/variant_convert.h"

namespace zentavo {
namespace {

// Knows the variables a, B and item.price, the functions f and g (uncounted) and two of one and two
// arguments, the stack variable local and the parameter P.
class Tokens : public TTokenizer {
 public:
  std::int32_t GetFunctionId(StringView Name, std::int32_t& ParamCount) override {
    const std::int32_t id = TTokenizer::GetFunctionId(Name, ParamCount);
    if (Name == u"one") ParamCount = 1;
    if (Name == u"two") ParamCount = 2;
    return id;
  }
  std::int32_t GetStackVariableId(StringView) override { return 7; }
  bool IsStackVariable(StringView Name) override { return SameText(Name, u"local"); }
  Variant GetParamValue(StringView Name) override {
    return Name == u"P.1" ? Variant(5) : Variant();
  }

  // kind.operator.level.index[text]value for each token, or the error.
  std::string Dump(StringView source) {
    TStringList variables;
    variables.SetCaseSensitive(true);
    for (const char16_t* name : {u"a", u"B", u"item.price"}) variables.AddValue(name, 10);
    variables.AddValue(u"zero", 0);
    TStringList functions;
    functions.SetCaseSensitive(true);
    for (const char16_t* name : {u"f", u"g", u"one", u"two"}) functions.AddValue(name, 20);
    TTokenList list;
    try {
      Tokenize(source, list, &variables, &functions);
    } catch (const Exception& error) {
      return std::to_string(list.size()) + " ! " + error.what();
    }
    std::string dump;
    for (const TSourceToken& token : list) dump += Line(token);
    return dump;
  }

 private:
  static std::string Line(const TSourceToken& token) {
    const auto number = [](int value) { return std::to_string(value) + "."; };
    return number(token.TokenKind()) + number(token.Operator()) + number(token.Level()) +
           std::to_string(token.FIndex) + "[" + ToUtf8(token.Name()) + "]" +
           ToUtf8(VarToStr(token.Value())) + (token.Value().IsNull() ? "Null" : "") + " ";
  }
};

TEST(TTokenizer, ClassifiesAndResolvesTokens) {
  const testing::ThreadSettings settings{TFormatSettings()};
  Tokens tokens;
  const auto dump = [&](StringView source) { return tokens.Dump(source); };
  testing::ExpectRows(
      {u" -> ", u" \t\r\n  -> ", u"'a''b' '' -> 2.1.0.0[a]a 2.1.0.0[b]b 2.1.0.0[] ",
       u"12. 1.5 -> 2.2.0.0[12.]12 2.2.0.0[1.5]1.5 ", u"#65 #66 -> 2.1.0.0[#65]A 2.1.0.0[#66]B ",
       u":P.1+ -> 2.1.0.0[P.1]5 1.12.3.0[+] ", u"NULL -> 2.1.0.0[NULL]Null ",
       u"OR and Not mod dIV -> 1.19.2.0[OR] 1.18.2.0[and] 1.20.7.0[Not] 1.16.5.0[mod] "
       u"1.17.5.0[dIV] ",
       u"Local item.price -> 2.3.0.7[Local] 2.4.0.10[item.price] ",
       u"F a -> 1.5.7.20[F] 2.4.0.10[a] ",
       u"*+-/= -> 1.14.6.0[*] 1.12.3.0[+] 1.13.3.0[-] 1.15.5.0[/] 1.6.3.0[=] ",
       u"< <= <> > >= < > -> 1.10.3.0[<] 1.11.3.0[<=] 1.7.3.0[<>] 1.8.3.0[>] 1.9.3.0[>=] "
       u"1.10.3.0[<] 1.8.3.0[>] ",
       u"(,) -> 3.0.1.0[(] 5.0.0.0[,] 4.0.1.0[)] ",
       u"_a\u00A0 -> 0.0.0.0[_] 2.4.0.10[a] 0.0.0.0[\u00A0] ",
       u"TWO (a, f(a, a)) one() -> 1.5.7.20[TWO] 3.0.1.0[(] 2.4.0.10[a] 5.0.0.0[,] 1.5.7.20[f] "
       u"3.0.1.0[(] 2.4.0.10[a] 5.0.0.0[,] 2.4.0.10[a] 4.0.1.0[)] 4.0.1.0[)] 1.5.7.20[one] "
       u"3.0.1.0[(] 4.0.1.0[)] "},
      dump);
  testing::ExpectRows(
      {u"a 'b -> 1 ! Unterminated string", u"1.2.3 -> 0 ! 1.2.3 is not a valid number",
       u"1.. -> 0 ! 1.. is not a valid number", u"#1.5 -> 0 ! '1.5' is not a valid integer value",
       u"# -> 0 ! '' is not a valid integer value", u"#65536 -> 0 ! Range check error",
       u"A -> 0 ! Undeclared identifier 'A'", u"zero -> 0 ! Undeclared identifier 'zero'",
       u"two(a) -> 0 ! Not enough parameters", u"one -> 0 ! Not enough parameters",
       u"f(one(a, a)) -> 2 ! To many parameters", u"one(two(a, a, a)) -> 2 ! To many parameters",
       u"one(a -> 0 ! Expected '')''", u"one([a] b) -> 0 ! Expected '',' or ')''"},
      dump);
}

TEST(TTokenizer, WithoutListsNothingIsDeclared) {
  TTokenizer tokenizer;
  TTokenList list;
  tokenizer.Tokenize(u":p + 1", list, nullptr, nullptr);
  EXPECT_TRUE(list.front().Value().IsNull());
  EXPECT_THROW(tokenizer.Tokenize(u"a", list, nullptr, nullptr), Exception);
}

TEST(TTokenizer, ParenthesesNestToTheLimit) {
  Tokens tokens;
  const auto open = [](std::size_t count) { return String(count, u'('); };
  EXPECT_EQ(tokens.Dump(open(kMaxParenthesisNesting) + u"'").substr(0, 6), "1000 !");
  EXPECT_EQ(tokens.Dump(open(kMaxParenthesisNesting + 1)), "1000 ! Parentheses nested too deeply");
  EXPECT_EQ(tokens.Dump(open(10'000'000)), "1000 ! Parentheses nested too deeply");
}

// Declares as many arguments as CountFunctionParameters finds, so that every other count of the
// tokenizer's shows as an error.
class CountingTokens : public TTokenizer {
 public:
  std::int32_t GetFunctionId(StringView Name, std::int32_t& ParamCount) override {
    if (Name != u"f") return 0;
    expected.clear();
    try {
      ParamCount = CountFunctionParameters(Source(), Position());
    } catch (const EScriptException& error) {
      expected = error.Message();
      ParamCount = 0;
    }
    ++calls;
    return 1;
  }
  String expected;
  int calls = 0;
};

String RandomArgument(std::mt19937& random, int depth) {
  const auto inner = [&] { return RandomArgument(random, depth - 1); };
  switch (depth == 0 ? 0 : random() % 8) {
    case 0: return u"1";
    case 1: return u"'(,['";
    case 2: return u" [" + inner() + u"] ";
    case 3: return u"(" + inner() + u")+" + inner();
    case 4: return inner() + u"," + inner();
    case 5: return u"f([" + inner() + u",f(" + inner() + u")]," + inner() + u")";
    default: return u"f (" + inner() + u", " + inner() + u")";
  }
}

TEST(TTokenizer, CountsNestedArgumentsAsTheScannerDoes) {
  constexpr unsigned kSeed = 4711;
  SCOPED_TRACE(kSeed);
  std::mt19937 random(kSeed);
  CountingTokens tokenizer;
  for (int round = 0; round < 2000; ++round) {
    String text = u"f(" + RandomArgument(random, 8) + u")";
    if (random() % 2 == 0) text[random() % text.size()] = u' ';
    tokenizer.expected.clear();
    TTokenList list;
    String raised;
    try {
      tokenizer.Tokenize(text, list, nullptr, nullptr);
    } catch (const Exception& error) {
      raised = error.Message();
    }
    if (raised != u"Unterminated string") {
      EXPECT_EQ(raised, tokenizer.expected) << ToUtf8(text);
    }
  }
  EXPECT_GT(tokenizer.calls, 20'000);
}

}  // namespace
}  // namespace zentavo
