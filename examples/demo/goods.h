// Made-up goods of a shop, the same on every machine.
#pragma once

#include <vector>

#include "zentavo/framework/text.h"

namespace demo {

struct Item {
  zentavo::String code;
  zentavo::String name;  // Greek or English
  double unit_price = 0;
  double cost = 0;
  double quantity = 0;
  zentavo::String discount;  // percent; empty where none is agreed
  double vat_class = 0;      // 1 to 3
  zentavo::String price_date;
};

std::vector<Item> MakeGoods(int count);

}  // namespace demo
