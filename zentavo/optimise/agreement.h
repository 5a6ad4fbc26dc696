// When two cells agree.
#pragma once

#include "zentavo/framework/variant.h"

namespace zentavo::optimise_internal {

// Empty, Null and the empty text: a left value that agrees with nothing.
inline bool IsEmptyCell(const Variant& value) {
  return value.IsEmpty() || value.IsNull() || value.IsEmptyText();
}

// A single, a double or a currency.
inline bool IsFloat(const Variant& value) {
  return value.Kind() == VariantKind::kDouble || value.Kind() == VariantKind::kSingle ||
         value.Kind() == VariantKind::kCurrency;
}

// Whether the cells compare equal or, with a tolerance above 0, are floats no further apart. Values
// that cannot be compared do not agree. `left` is not empty.
ZENTAVO_API bool CellsAgree(const Variant& left, const Variant& right, double tolerance);

}  // namespace zentavo::optimise_internal
