#include <cmath>
#include <cstring>

#include "zentavo/framework/variant_convert.h"
#include "zentavo/framework/variant_number.h"
#include "zentavo/framework/variant_operators.h"

namespace zentavo {

namespace {

using variant_internal::BothOf;
using variant_internal::Number;
using variant_internal::Rank;
using variant_internal::ReadNumber;
using variant_internal::RefuseArrays;
using variant_internal::ToCurrencyUnits;

VariantOrder OrderOf(auto a, auto b) {
  if (a < b) return VariantOrder::kLess;
  if (a > b) return VariantOrder::kGreater;
  return a == b ? VariantOrder::kEqual : VariantOrder::kUnordered;
}

VariantOrder Reversed(VariantOrder order) {
  if (order == VariantOrder::kLess) return VariantOrder::kGreater;
  return order == VariantOrder::kGreater ? VariantOrder::kLess : order;
}

// Exact: the integer never passes through a double.
VariantOrder OrderOfIntegerAndReal(std::int64_t integer, double real) {
  constexpr double kInt64Limit = 0x1p63;
  if (std::isnan(real)) return VariantOrder::kUnordered;
  if (real >= kInt64Limit) return VariantOrder::kLess;
  if (real < -kInt64Limit) return VariantOrder::kGreater;
  const auto whole = static_cast<std::int64_t>(real);
  if (integer != whole) return OrderOf(integer, whole);
  return OrderOf(0.0, real - static_cast<double>(whole));
}

VariantOrder OrderOfCurrencyAndWhole(std::int64_t units, const Number& other) {
  std::int64_t other_units = 0;
  if (!ToCurrencyUnits(other, other_units)) return OrderOf(std::int64_t{0}, other.whole);
  return OrderOf(units, other_units);
}

VariantOrder OrderOfNumbers(const Number& a, const Number& b) {
  if (a.IsInteger() && b.IsInteger()) return OrderOf(a.whole, b.whole);
  if (a.IsInteger() && b.IsReal()) return OrderOfIntegerAndReal(a.whole, b.real);
  if (a.IsReal() && b.IsInteger()) return Reversed(OrderOfIntegerAndReal(b.whole, a.real));
  if (a.IsReal() || b.IsReal()) return OrderOf(a.AsDouble(), b.AsDouble());
  if (a.rank == Rank::kCurrency) return OrderOfCurrencyAndWhole(a.whole, b);
  return Reversed(OrderOfCurrencyAndWhole(b.whole, a));
}

bool IsNaN(const Variant& value) {
  const bool real = value.Kind() == VariantKind::kDouble || value.Kind() == VariantKind::kSingle ||
                    value.Kind() == VariantKind::kDate;
  return real && std::isnan(value.DoubleValue());
}

VariantOrder OrderOfBooleans(const Variant& a, const Variant& b) {
  if (IsNaN(a) || IsNaN(b)) return VariantOrder::kUnordered;
  return OrderOf(VarToBoolean(a), VarToBoolean(b));
}

VariantOrder OrderOfTexts(StringView a, StringView b) {
  return OrderOf(a.compare(b), 0);
}

VariantOrder OrderOfBytes(const Variant::ByteArray& a, const Variant::ByteArray& b) {
  if (a == b) return VariantOrder::kEqual;
  return a < b ? VariantOrder::kLess : VariantOrder::kGreater;
}

bool SameUnits(StringView a, StringView b) {
  return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(char16_t)) == 0;
}

// Null and Empty come before all other kinds.
int PlaceOfNothing(const Variant& value) {
  return value.IsNull() ? 0 : value.IsEmpty() ? 1 : 2;
}

VariantOrder CompareKinds(const Variant& a, const Variant& b) {
  const int a_place = PlaceOfNothing(a);
  const int b_place = PlaceOfNothing(b);
  if (a_place < 2 || b_place < 2) return OrderOf(a_place, b_place);
  if (BothOf(VariantKind::kByteArray, a, b)) {
    return OrderOfBytes(a.ByteArrayValue(), b.ByteArrayValue());
  }
  RefuseArrays(a, b);
  if (BothOf(VariantKind::kString, a, b)) return OrderOfTexts(a.StringValue(), b.StringValue());
  const auto either = [&](VariantKind kind) { return a.Kind() == kind || b.Kind() == kind; };
  if (either(VariantKind::kBoolean)) return OrderOfBooleans(a, b);
  if (either(VariantKind::kDate) && either(VariantKind::kString)) {
    return OrderOf(VarToDateTime(a), VarToDateTime(b));
  }
  return OrderOfNumbers(ReadNumber(a), ReadNumber(b));
}

}  // namespace

VariantOrder VarCompare(const Variant& a, const Variant& b) {
  if (BothOf(VariantKind::kDouble, a, b)) return OrderOf(a.DoubleValue(), b.DoubleValue());
  if (BothOf(VariantKind::kInteger, a, b)) return OrderOf(a.Int64Value(), b.Int64Value());
  return CompareKinds(a, b);
}

bool operator==(const Variant& a, const Variant& b) {
  if (BothOf(VariantKind::kString, a, b)) return SameUnits(a.StringValue(), b.StringValue());
  return VarCompare(a, b) == VariantOrder::kEqual;
}

}  // namespace zentavo
