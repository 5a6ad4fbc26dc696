// Operators on variants.
//
// Arithmetic: Null with anything is Null. Empty counts 0; in `+` it is the empty text beside a
// string. String + string concatenates; otherwise a string converts to a double (text that is none
// raises EVariantTypeCastError). A boolean counts -1 or 0, a single as a double.
//
//   integers       32 bits widen to 64 bits, then to double, on overflow; a 64-bit operand gives 64
//   currency       + - * with currency or integers: currency, exact, a product rounded to four
//                  decimals, halves away from zero; on overflow, and with doubles: double
//   dates          date + or - number and date + date: date; date - date, number - date, any other
//                  operation and negation: double
//   /              always double; a divisor 0 raises EZeroDivide "Floating point division by zero"
//   div, mod       operands are rounded to integers first, halves to even (beyond 64 bits, and NaN:
//                  ERangeError "Range check error"), and count as 32 bits when they fit, unless
//                  they were 64-bit integers; the quotient is cut toward zero and the rest has the
//                  sign of the dividend; a divisor 0 raises EDivByZero "Division by zero"
//
// And, or, not: two booleans give a boolean, otherwise bitwise integers, rounded as for div. With
// Null: False and Null is False, True or Null is True, all else Null, in either order.
//
// Kinds that no operator takes (arrays, beside anything but Null) raise EVariantError "Invalid
// variant operation".
#pragma once

#include "zentavo/framework/variant.h"

namespace zentavo {

ZENTAVO_API Variant operator+(const Variant& a, const Variant& b);
ZENTAVO_API Variant operator-(const Variant& a, const Variant& b);
ZENTAVO_API Variant operator*(const Variant& a, const Variant& b);
ZENTAVO_API Variant operator/(const Variant& a, const Variant& b);
ZENTAVO_API Variant operator-(const Variant& a);
ZENTAVO_API Variant VarDiv(const Variant& a, const Variant& b);
ZENTAVO_API Variant VarMod(const Variant& a, const Variant& b);
ZENTAVO_API Variant VarAnd(const Variant& a, const Variant& b);
ZENTAVO_API Variant VarOr(const Variant& a, const Variant& b);
ZENTAVO_API Variant VarNot(const Variant& a);

// a = a + b, keeping the storage of a text in `a`: appending text many times costs a constant time
// a unit. `b` may be `a`.
ZENTAVO_API void VarAddTo(Variant& a, const Variant& b);

enum class VariantOrder { kLess, kEqual, kGreater, kUnordered };

// Null equals Null only and orders below everything; Empty equals Empty only and orders just above
// Null. Two strings compare ordinally, two byte arrays byte by byte. A boolean beside anything else
// compares as booleans, False below True. A string beside a number converts to a number, beside a
// date as VarToDateTime does; one that does not convert raises EVariantTypeCastError. Integers
// compare exactly with doubles and currency. NaN is unordered. Arrays of variants raise
// EVariantError.
ZENTAVO_API VariantOrder VarCompare(const Variant& a, const Variant& b);

// Raises as VarCompare does, and so do the operators below.
ZENTAVO_API bool operator==(const Variant& a, const Variant& b);
inline bool operator!=(const Variant& a, const Variant& b) {
  return !(a == b);
}
inline bool operator<(const Variant& a, const Variant& b) {
  return VarCompare(a, b) == VariantOrder::kLess;
}
inline bool operator>(const Variant& a, const Variant& b) {
  return VarCompare(a, b) == VariantOrder::kGreater;
}
inline bool operator<=(const Variant& a, const Variant& b) {
  const VariantOrder order = VarCompare(a, b);
  return order == VariantOrder::kLess || order == VariantOrder::kEqual;
}
inline bool operator>=(const Variant& a, const Variant& b) {
  const VariantOrder order = VarCompare(a, b);
  return order == VariantOrder::kGreater || order == VariantOrder::kEqual;
}

}  // namespace zentavo
