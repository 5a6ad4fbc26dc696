// Reads an order as people write it by hand, changes it and writes it exactly.
#include <iostream>

#include "zentavo/json/array.h"
#include "zentavo/json/object.h"

int main() {
  using namespace zentavo;
  try {
    TJSONObject order(
        u"{id: 7; customer: 'Papas' /* by phone */, lines: [{item: A1, price: 2.5}]}");
    double total = 0;
    for (const TZAbstractObject* value : order.getJSONArray(u"lines")) {
      const auto& line = dynamic_cast<const TJSONObject&>(*value);
      total += line.getDouble(u"price") * line.optInt(u"quantity", 1);
    }
    order.put(u"total", total).put(u"paid", false);
    for (const JSONMember member : order) std::cout << ToUtf8(member.key) << '\n';
    std::cout << ToUtf8(order.toString(2)) << '\n';
    TJSONArray broken(u"[1, 2\n  3]");
    std::cout << broken.length() << '\n';
  } catch (const ParseException& error) {
    std::cout << ToUtf8(error.Reason()) << " (line " << error.Line() << ", column "
              << error.Column() << ")\n";
  }
  return 0;
}
