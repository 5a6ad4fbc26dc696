// A host that lets its users write formulas over its own data: pointer variables for what it holds
// in memory, a user variable and a user function for what it computes on demand.
#include <cstdlib>
#include <iostream>

#include "zentavo/formula/parser.h"
#include "zentavo/framework/exception.h"
#include "zentavo/framework/number_text.h"
#include "zentavo/framework/text.h"

namespace {

using zentavo::String;
using zentavo::StringView;

// One line of an order, as formulas see it.
struct OrderLine {
  String customer;
  double price = 0;
  double quantity = 0;
};

class OrderFormulas : public zentavo::TXParser {
 public:
  // `line` must outlive the parser: formulas read it where it is.
  explicit OrderFormulas(OrderLine& line) : line_(line) {}

  void UserInitialize() override {
    InsertIdent(u"Customer", zentavo::tokPtrVariable, 0, zentavo::resString, &line_.customer);
    InsertIdent(u"Price", zentavo::tokPtrVariable, 0, zentavo::resNumber, &line_.price);
    InsertIdent(u"Qty", zentavo::tokPtrVariable, 0, zentavo::resNumber, &line_.quantity);
    DefineUserVariable(u"VatRate", kVatRate, zentavo::resNumber);
    DefineUserFunction(u"QtyDiscount", kQtyDiscount, zentavo::resNumber);
  }

  void EvaluateUserVariable(std::int32_t id, zentavo::TResult& result) override {
    if (id == kVatRate) result.ResultNum = 24;
  }

  void EvaluateUserFunction(std::int32_t id, zentavo::TArguments& args,
                            zentavo::TResult& result) override {
    if (id != kQtyDiscount) return;
    if (args.Count() != 1)
      ParserError(u"QtyDiscount() : Wrong number of arguments", u"QtyDiscount");
    const double quantity = args.Items(0).ResultNum;
    result.ResultNum = quantity >= 50 ? 10 : quantity >= 10 ? 5 : 0;
  }

 private:
  enum Ids : std::int32_t { kVatRate = 1, kQtyDiscount = 2 };

  OrderLine& line_;
};

String TextOf(const zentavo::TResult& value) {
  return value.ResultType == zentavo::resString ? value.ResultStr
                                                : zentavo::FloatToStr(value.ResultNum);
}

// Prints the formula's value, or the message with a caret under the place at fault. Returns whether
// there was a value.
bool Show(OrderFormulas& formulas, StringView formula) {
  std::cout << zentavo::ToUtf8(formula) << "\n";
  try {
    formulas.SetFormula(formula);
    formulas.Execute();
    std::cout << "  = " << zentavo::ToUtf8(TextOf(formulas.CResult)) << "\n";
    return true;
  } catch (const zentavo::EXParserError& error) {
    const auto column = static_cast<std::size_t>(error.Position());
    if (column > 0) std::cout << std::string(column - 1, ' ') << "^\n";
    std::cout << "  " << error.what() << "\n";
  }
  return false;
}

// Runs one formula over all lines: the first run compiles it, the others only evaluate.
double TotalOf(OrderFormulas& formulas, OrderLine& line, StringView formula) {
  formulas.SetFormula(formula);
  double total = 0;
  for (const double quantity : {5.0, 12.0, 60.0}) {
    line.quantity = quantity;
    formulas.Execute();
    total += formulas.CResult.ResultNum;
  }
  return total;
}

}  // namespace

int main() {
  OrderLine line{u"Olive Press", 20, 12};
  OrderFormulas formulas(line);

  bool all_right = Show(formulas, u"IF(Qty>10, Price*0.9, Price)");
  all_right &= Show(formulas, u"Round(Qty*Price*(1-QtyDiscount(Qty)/100)*(1+VatRate/100), 2)");
  all_right &= Show(formulas, u"Customer + ': ' + String(Qty) + ' pieces'");
  const bool refused = !Show(formulas, u"Qty*Prise");

  const double total = TotalOf(formulas, line, u"Qty*Price*(1-QtyDiscount(Qty)/100)");
  std::cout << "total of three orders = " << zentavo::ToUtf8(zentavo::FloatToStr(total)) << "\n";
  return all_right && refused && total == 1408 ? EXIT_SUCCESS : EXIT_FAILURE;
}
