// What the demo shows: one function a subsystem, listed in main.cpp, each in a source of its own.
#pragma once

namespace demo {

// Prices a list of 500 items with the formulas of examples/price_list.formulas.
void PriceTheList();

}  // namespace demo
