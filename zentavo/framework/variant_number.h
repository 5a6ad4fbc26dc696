// What a variant counts as in arithmetic: the ground that conversions and operators share.
#pragma once

#include <cstdint>

#include "zentavo/framework/variant.h"

namespace zentavo::variant_internal {

inline constexpr std::int64_t kCurrencyScale = 10000;  // units in 1

// Ordered: of two operands the higher one decides how they are combined.
enum class Rank : std::uint8_t { kInteger, kInt64, kCurrency, kDouble, kDate };

// A number of some rank: `whole` holds integers and currency units, `real` doubles and dates.
struct Number {
  Rank rank;
  std::int64_t whole;
  double real;

  bool IsInteger() const { return rank <= Rank::kInt64; }
  bool IsReal() const { return rank >= Rank::kDouble; }
  double AsDouble() const {
    if (IsReal()) return real;
    const auto value = static_cast<double>(whole);
    return IsInteger() ? value : value / static_cast<double>(kCurrencyScale);
  }
};

inline bool BothOf(VariantKind kind, const Variant& a, const Variant& b) {
  return a.Kind() == kind && b.Kind() == kind;
}

// Raises EVariantError "Invalid variant operation" when an operand is an array of any kind.
void RefuseArrays(const Variant& a, const Variant& b);

// Raises EVariantTypeCastError "Could not convert variant of type (%s) into type (%s)".
[[noreturn]] void RaiseCast(const Variant& value, VariantKind target);

// What `value` counts as: Empty 0, a boolean -1 or 0, a text the number that it spells. Raises
// EVariantTypeCastError, with `target` in its text, for a text that spells none, Null and arrays.
Number ReadAnyNumber(const Variant& value, VariantKind target);
inline Number ReadNumber(const Variant& value, VariantKind target = VariantKind::kDouble) {
  if (value.Kind() == VariantKind::kDouble) return {Rank::kDouble, 0, value.DoubleValue()};
  if (value.Kind() == VariantKind::kInteger) return {Rank::kInteger, value.Int64Value(), 0};
  return ReadAnyNumber(value, target);
}

// The same, rounded to an integer, halves to even. Raises ERangeError beyond 64 bits and for NaN.
std::int64_t ReadInteger(const Variant& value, VariantKind target = VariantKind::kInt64);

// The units of a currency or an integer; false when they do not fit.
bool ToCurrencyUnits(const Number& number, std::int64_t& units);

}  // namespace zentavo::variant_internal
