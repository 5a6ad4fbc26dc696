#include "zentavo/expr/evaluator.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <new>
#include <stdexcept>

#include "tests/support/error_of.h"
#include "tests/support/sides.h"
#include "tests/support/thread_settings.h"
#include "zentavo/expr/expression.h"
#include "zentavo/expr/tokenizer.h"
#include "zentavo/foundation/errors.h"
#include "zentavo/framework/variant_convert.h"
#include "zentavo/framework/variant_operators.h"

namespace {
std::size_t allocations = 0;
}

// Counts every allocation of this program and, where it shares the operator, of the library.
[[gnu::noinline]] void* operator new(std::size_t size) {
  ++allocations;
  if (void* memory = std::malloc(size == 0 ? 1 : size)) return memory;
  throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* memory) noexcept {
  std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}

namespace zentavo {
namespace {

enum Functions : std::int32_t { kSum3 = 1, kFail, kDrop, kDepth };

class Host : public TExpressionEvaluator {
 public:
  using TExpressionEvaluator::VBP;
  using TExpressionEvaluator::VSP;
  using TExpressionEvaluator::VStack;

  Host() { SetPostFix(&code); }

  void CallFunction(std::int32_t FunctionId, Variant& Result) override {
    if (FunctionId == kFail) throw std::runtime_error("host");
    if (FunctionId == kDepth) Result = VSP;
    if (FunctionId != kSum3) return;
    Variant third;
    Variant second;
    RunPop(third);
    RunPop(second);
    RunPop(Result);
    Result = Result + second + third;
  }
  void GetVariableValue(std::int32_t VariableId, Variant& Value) override {
    Value = variables[static_cast<std::size_t>(VariableId - 1)];
  }

  void Compile(StringView source) {
    TStringList names;
    for (const char16_t* name : {u"a", u"b", u"c", u"text"}) {
      names.AddValue(name, static_cast<TStringList::Attached>(names.Count()) + 1);
    }
    TStringList functions;
    functions.AddValue(u"sum3", kSum3);
    functions.AddValue(u"fail", kFail);
    functions.AddValue(u"drop", kDrop);
    functions.AddValue(u"depth", kDepth);
    code.clear();
    TExpression().CompileExpression(source, code, &names, &functions);
  }
  Variant Value(StringView source) {
    Compile(source);
    return Evaluate();
  }

  TCodeList code;
  Variant variables[4] = {6, 4, true, u"abc"};
};

std::string Text(const Variant& value) {
  return value.IsNull() ? "Null" : ToUtf8(VarToStr(value));
}

TEST(TExpressionEvaluator, Evaluates) {
  const testing::ThreadSettings settings{TFormatSettings()};
  Host host;
  const auto value = [&](StringView source) { return Text(host.Value(source)); };
  testing::ExpectRows(
      {u" -> Null", u"7 / 2 -> 3.5", u"a / b -> 1.5", u"a div b + a mod b -> 3", u"a - b * 2 -> -2",
       u"-a -> -6", u"- -3 -> -3", u"3 - -2 -> 5", u"not not c -> False", u"-depth -> 1",
       u"a > b -> True", u"a >= 6 and a <= 6 and not (a <> 6) -> True", u"a < b or b = 4 -> True",
       u"a and 3 -> 2", u"1 or a -> 7"},
      value);
  testing::ExpectRows(
      {u"text + 'def' = 'abcdef' -> True", u"text + #33 -> abc!", u"'3' * 2 -> 6",
       u"text * 2 -> Null", u"1 / 0 -> Null", u"a div 0 -> Null", u"null + 1 -> Null",
       u"null = null -> True", u"fail(1) -> Null", u"sum3(1, a, b * 2) -> 15",
       u"sum3(a, b) -> Null", u"sum3('x', text, 'y') -> xabcy", u"(2, 3) -> 3", u"drop(4) -> ",
       u"1 + -> Null", u"* -> Null"},
      value);
}

TEST(TExpressionEvaluator, WithoutCodeGivesNull) {
  Host host;
  host.SetPostFix(nullptr);
  EXPECT_TRUE(host.Evaluate().IsNull());
  EXPECT_THROW(host.ExecInstructions(0, 0), EListError);
}

TEST(TExpressionEvaluator, LeavesWhatFunctionsDidNotPop) {
  Host host;
  host.Value(u"drop(1, 2)");
  EXPECT_EQ(host.VSP, 2);
  EXPECT_EQ(host.VStack[1].DoubleValue(), 2);
  Variant value;
  host.RunPop(value);
  host.RunPop(value);
  host.RunPop(value);
  EXPECT_TRUE(value.IsNull());
}

TEST(TExpressionEvaluator, ReadsStackVariablesFromTheBase) {
  Host host;
  host.code = {TInstruction(opStackVariable, Variant(), 2), TInstruction(opNumber, 1.5, 0),
               TInstruction(opAdd, Variant(), 0)};
  host.VBP = 100;
  host.VStack[102] = 40;
  EXPECT_EQ(host.Evaluate().DoubleValue(), 41.5);
  EXPECT_EQ(host.VStack[102].Int32Value(), 40);
  EXPECT_EQ(host.VBP, 100);
  for (const std::int32_t slot : {101, -101}) {
    host.code.front().SetIndex(slot);
    EXPECT_THROW(host.ExecInstructions(0, 0), ERangeError);
  }
}

TEST(TExpressionEvaluator, RunsPartsWithoutResettingTheStack) {
  Host host;
  host.Compile(u"(1, 2 + 3, text * 2)");
  host.ExecInstructions(0, 0);
  host.ExecInstructions(1, 3);
  EXPECT_EQ(host.VSP, 2);
  EXPECT_EQ(host.VStack[1].DoubleValue(), 5);
  EXPECT_THROW(host.ExecInstructions(4, 6), EVariantTypeCastError);
  EXPECT_EQ(host.VSP, 2);
  host.RunOperator(opStop);
  EXPECT_EQ(host.VSP, 2);
}

TEST(TExpressionEvaluator, StackHolds201Values) {
  Host host;
  String list = u"(0";
  for (std::int32_t count = 1; count < kExpressionStackSize; ++count) list += u",a";
  EXPECT_EQ(Text(host.Value(list + u")")), "6");
  EXPECT_EQ(host.VSP, kExpressionStackSize - 1);
  EXPECT_EQ(Text(host.Value(list + u",1)")), "Null");
  EXPECT_EQ(host.VSP, kExpressionStackSize);
  EXPECT_EQ(testing::ErrorOf<EZentavoError>([&] { host.RunPush(1); }), "Expression stack overflow");
}

TEST(TExpressionEvaluator, NumbersAndShortTextsTakeNoAllocation) {
  Host host;
  host.variables[0] = 2.5;
  host.Compile(u"text + ' longer than short' + text");
  allocations = 0;
  host.Evaluate();
  if (allocations == 0) GTEST_SKIP() << "the library allocates where this program cannot count";
  for (const char16_t* source :
       {u"a + b * 3 > a and not c", u"text + '-x' = 'abc-x'", u"sum3(a, b, 3) / 2 - b mod 3",
        u"-a <= b or null", u"sum3(text, 'de', 'f') < text", u"a * '2.5' + b div 2"}) {
    SCOPED_TRACE(ToUtf8(source));
    host.Compile(source);
    allocations = 0;
    const Variant value = host.Evaluate();
    EXPECT_EQ(allocations, 0U);
    EXPECT_FALSE(value.IsNull() && StringView(source).find(u"null") == StringView::npos);
  }
}

}  // namespace
}  // namespace zentavo
