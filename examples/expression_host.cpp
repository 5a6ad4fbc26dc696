// A host that runs its users' rules over orders: variables, functions whose parameters are counted
// when a rule is compiled, and a stack variable, which lives on the evaluator's own stack.
#include <array>
#include <cmath>
#include <cstdlib>
#include <iostream>

#include "zentavo/expr/evaluator.h"
#include "zentavo/expr/expression.h"
#include "zentavo/expr/tokenizer.h"
#include "zentavo/framework/exception.h"
#include "zentavo/framework/text.h"
#include "zentavo/framework/variant_convert.h"

namespace {

using zentavo::StringView;
using zentavo::Variant;

enum VariableIds : std::int32_t { kPrice = 1, kQty, kCustomer };

struct Function {
  StringView name;
  std::int32_t parameters;
};
// A function's identifier is its place here, from 1: 0 means not declared.
constexpr std::array<Function, 2> kFunctions = {{{u"round", 2}, {u"iif", 3}}};
enum FunctionIds : std::int32_t { kRound = 1, kIif };

// The names of the rules. Variables come from a list, functions and the stack variable from hooks.
class OrderTokenizer : public zentavo::TTokenizer {
 public:
  std::int32_t GetFunctionId(StringView name, std::int32_t& parameters) override {
    for (std::size_t index = 0; index < kFunctions.size(); ++index) {
      if (kFunctions[index].name != name) continue;
      parameters = kFunctions[index].parameters;
      return static_cast<std::int32_t>(index) + 1;
    }
    return 0;
  }
  bool IsStackVariable(StringView name) override { return zentavo::SameText(name, u"total"); }
  std::int32_t GetStackVariableId(StringView) override { return 0; }
  std::int32_t GetVariableId(StringView name) override {
    const std::int32_t index = names_.IndexOf(name);
    return index < 0 ? 0 : static_cast<std::int32_t>(names_.Value(index));
  }
  void Declare(StringView name, VariableIds id) { names_.AddValue(name, id); }

 private:
  zentavo::TStringList names_;
};

// One order with its running total. The rules run one after another on its stack.
class Order : public zentavo::TExpressionEvaluator {
 public:
  Variant price, quantity, customer;

  // The total's slot is far above what a rule needs for itself.
  Order() {
    VBP = kTotalSlot;
    SetTotal(0.0);
  }
  void SetTotal(Variant value) { VStack[kTotalSlot] = std::move(value); }

  void GetVariableValue(std::int32_t id, Variant& value) override {
    value = id == kPrice ? price : id == kQty ? quantity : customer;
  }
  void CallFunction(std::int32_t id, Variant& result) override {
    if (id == kRound) Round(result);
    if (id == kIif) Choose(result);
  }

 private:
  static constexpr std::int32_t kTotalSlot = 200;

  void Round(Variant& result) {  // round(value, decimals)
    Variant value;
    Variant decimals;
    RunPop(decimals);
    RunPop(value);
    const double scale = std::pow(10.0, zentavo::VarToInt32(decimals));
    result = std::round(zentavo::VarToDouble(value) * scale) / scale;
  }
  void Choose(Variant& result) {  // iif(condition, yes, no)
    Variant yes;
    Variant no;
    RunPop(no);
    RunPop(yes);
    RunPop(result);
    result = zentavo::VarToBoolean(result) ? yes : no;
  }
};

class Rule {
 public:
  Rule(StringView text, OrderTokenizer& names) {
    zentavo::TExpression().CompileExpression(text, code_, names);
  }
  Variant Run(Order& order) const {
    order.SetPostFix(&code_);
    return order.Evaluate();
  }

 private:
  zentavo::TCodeList code_;
};

// Prints the error of a rule that does not compile. Returns whether there was one.
bool Refused(StringView text, OrderTokenizer& names) {
  try {
    const Rule rule(text, names);
    return false;
  } catch (const zentavo::Exception& error) {
    std::cout << zentavo::ToUtf8(text) << "\n  " << error.what() << "\n";
    return true;
  }
}

}  // namespace

int main() {
  OrderTokenizer names;
  names.Declare(u"Price", kPrice);
  names.Declare(u"Qty", kQty);
  names.Declare(u"Customer", kCustomer);
  const Rule amount(u"round(iif(Qty >= 10, Price * 0.95, Price) * Qty, 2)", names);
  const Rule sum(u"total + round(iif(Qty >= 10, Price * 0.95, Price) * Qty, 2)", names);
  const Rule line(u"Customer + iif(Qty >= 10, ', a large order', '')", names);

  Order order;
  order.price = 19.99;
  order.customer = u"Olive Press";
  for (const int quantity : {4, 12}) {
    order.quantity = quantity;
    std::cout << zentavo::ToUtf8(zentavo::VarToStr(line.Run(order))) << ": "
              << zentavo::ToUtf8(zentavo::VarToStr(amount.Run(order))) << "\n";
    order.SetTotal(sum.Run(order));
  }
  const Variant total = Rule(u"total", names).Run(order);
  std::cout << "total: " << zentavo::ToUtf8(zentavo::VarToStr(total)) << "\n";

  order.price = u"unknown";  // no number: the rule has no value
  const bool no_value = amount.Run(order).IsNull();
  const bool refused = Refused(u"round(Price)", names) && Refused(u"Prise * 2", names);
  const bool summed = std::abs(zentavo::VarToDouble(total) - 307.85) < 0.005;
  return summed && no_value && refused ? EXIT_SUCCESS : EXIT_FAILURE;
}
