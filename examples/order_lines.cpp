// The lines of an order in memory: freight is spread over them by value, then they travel as text.
#include <cstdio>

#include "zentavo/framework/memory_data_set.h"
#include "zentavo/genlib/allocation.h"
#include "zentavo/genlib/packed_text.h"

int main() {
  zentavo::TMemoryDataSet lines(u"LINES");
  zentavo::TField& item = lines.AddField(u"ITEM", zentavo::TFieldType::ftString, 20);
  zentavo::TField& value = lines.AddField(u"VALUE", zentavo::TFieldType::ftFloat);
  zentavo::TField& freight = lines.AddField(u"FREIGHT", zentavo::TFieldType::ftFloat);
  lines.Open();
  const auto add = [&](const char16_t* name, double amount) {
    lines.Append();
    item.SetAsString(name);
    value.SetAsFloat(amount);
    lines.Post();
  };
  add(u"Olive oil", 120);
  add(u"Honey", 80);
  add(u"Salt", 4.5);

  zentavo::ZentavoEpimerismos(lines, value, lines, freight, 25, 2);

  double total = 0;
  for (lines.First(); !lines.Eof(); lines.Next()) {
    std::printf("%-12s %8.2f %8.2f\n", zentavo::ToUtf8(item.AsString()).c_str(), value.AsFloat(),
                freight.AsFloat());
    total += freight.AsFloat();
  }
  const zentavo::String packed = zentavo::CompressDataSet(lines);
  std::printf("freight %.2f, packed into %zu characters\n", total, packed.size());
  return total > 24.995 && total < 25.005 ? 0 : 1;
}
