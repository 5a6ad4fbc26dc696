// The example of the project's front page.
#include <iostream>

#include "zentavo/formula/parser.h"

int main() {
  double price = 20, quantity = 12;
  zentavo::TXParser parser;
  parser.InsertIdent(u"Price", zentavo::tokPtrVariable, 0, zentavo::resNumber, &price);
  parser.InsertIdent(u"Qty", zentavo::tokPtrVariable, 0, zentavo::resNumber, &quantity);
  parser.SetFormula(u"IF(Qty>10, Price*0.9, Price)");
  parser.Execute();
  std::cout << parser.CResult.ResultNum << '\n';  // 18
}
