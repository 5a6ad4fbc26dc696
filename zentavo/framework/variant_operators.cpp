#include "zentavo/framework/variant_operators.h"

#include <algorithm>
#include <utility>

#include "zentavo/framework/exception.h"
#include "zentavo/framework/variant_number.h"

namespace zentavo {

namespace {

using variant_internal::BothOf;
using variant_internal::kCurrencyScale;
using variant_internal::Number;
using variant_internal::Rank;
using variant_internal::ReadInteger;
using variant_internal::ReadNumber;
using variant_internal::RefuseArrays;
using variant_internal::ToCurrencyUnits;

enum class Operation { kAdd, kSubtract, kMultiply, kDivide };

bool AnyNull(const Variant& a, const Variant& b) {
  return a.IsNull() || b.IsNull();
}

Variant FromInteger(std::int64_t value, Rank rank) {
  if (rank == Rank::kInteger && std::in_range<std::int32_t>(value)) {
    return static_cast<std::int32_t>(value);
  }
  return value;
}

double Divide(double a, double b) {
  if (b == 0) throw EZeroDivide(u"Floating point division by zero");
  return a / b;
}

template <Operation operation>
double OfDoubles(double a, double b) {
  if constexpr (operation == Operation::kAdd) return a + b;
  if constexpr (operation == Operation::kSubtract) return a - b;
  if constexpr (operation == Operation::kMultiply) return a * b;
  if constexpr (operation == Operation::kDivide) return Divide(a, b);
}

// Returns false when the result does not fit.
template <Operation operation>
bool OfIntegers(std::int64_t a, std::int64_t b, std::int64_t& result) {
  if constexpr (operation == Operation::kAdd) return !__builtin_add_overflow(a, b, &result);
  if constexpr (operation == Operation::kSubtract) return !__builtin_sub_overflow(a, b, &result);
  if constexpr (operation == Operation::kMultiply) return !__builtin_mul_overflow(a, b, &result);
  return false;
}

// a * b / kCurrencyScale, rounded half away from zero. All four partial products have one sign, so
// that rounding the smallest one rounds the sum.
bool MultiplyCurrency(std::int64_t a, std::int64_t b, std::int64_t& result) {
  const std::int64_t a_rest = a % kCurrencyScale;
  const std::int64_t b_rest = b % kCurrencyScale;
  const std::int64_t rests = a_rest * b_rest;
  const std::int64_t half = rests < 0 ? -kCurrencyScale / 2 : kCurrencyScale / 2;
  std::int64_t upper = 0;
  return !__builtin_mul_overflow(a / kCurrencyScale, b, &upper) &&
         !__builtin_add_overflow(upper, a_rest * (b / kCurrencyScale), &upper) &&
         !__builtin_add_overflow(upper, (rests + half) / kCurrencyScale, &result);
}

template <Operation operation>
bool OfCurrency(const Number& a, const Number& b, std::int64_t& units) {
  std::int64_t a_units = 0;
  std::int64_t b_units = 0;
  if (!ToCurrencyUnits(a, a_units) || !ToCurrencyUnits(b, b_units)) return false;
  if constexpr (operation == Operation::kMultiply) return MultiplyCurrency(a_units, b_units, units);
  return OfIntegers<operation>(a_units, b_units, units);
}

template <Operation operation>
bool GivesDate(Rank a, Rank b) {
  if constexpr (operation == Operation::kAdd) return a == Rank::kDate || b == Rank::kDate;
  if constexpr (operation == Operation::kSubtract) return a == Rank::kDate && b != Rank::kDate;
  return false;
}

template <Operation operation>
Variant Combine(const Number& a, const Number& b) {
  const Rank rank = std::max(a.rank, b.rank);
  std::int64_t whole = 0;
  if (rank <= Rank::kInt64) {
    if (OfIntegers<operation>(a.whole, b.whole, whole)) return FromInteger(whole, rank);
  } else if (rank == Rank::kCurrency) {
    if (OfCurrency<operation>(a, b, whole)) return Variant::CurrencyUnits(whole);
  }
  const double real = OfDoubles<operation>(a.AsDouble(), b.AsDouble());
  return GivesDate<operation>(a.rank, b.rank) ? Variant::Date(real) : Variant(real);
}

bool IsTextOrEmpty(const Variant& value) {
  return value.IsString() || value.IsEmpty();
}

bool Concatenates(const Variant& a, const Variant& b) {
  return (a.IsString() && IsTextOrEmpty(b)) || (b.IsString() && a.IsEmpty());
}

StringView TextOf(const Variant& value) {
  return value.IsString() ? value.StringValue() : StringView();
}

// The kinds that evaluation meets most.
bool IsPlain(const Variant& value) {
  return value.Kind() == VariantKind::kInteger || value.Kind() == VariantKind::kDouble;
}

template <Operation operation>
Variant Calculate(const Variant& a, const Variant& b) {
  if (BothOf(VariantKind::kDouble, a, b)) {
    return OfDoubles<operation>(a.DoubleValue(), b.DoubleValue());
  }
  if (IsPlain(a) && IsPlain(b)) return Combine<operation>(ReadNumber(a), ReadNumber(b));
  if (AnyNull(a, b)) return Variant::Null();
  RefuseArrays(a, b);
  if constexpr (operation == Operation::kAdd) {
    if (Concatenates(a, b)) return Variant::Concatenated(TextOf(a), TextOf(b));
  }
  return Combine<operation>(ReadNumber(a), ReadNumber(b));
}

// An operand of the integer operators. A rounded number is as narrow as its value allows.
struct Integer {
  explicit Integer(const Variant& operand)
      : value(ReadInteger(operand)),
        rank(operand.Kind() == VariantKind::kInt64 ? Rank::kInt64 : Rank::kInteger) {
    if (!std::in_range<std::int32_t>(value)) rank = Rank::kInt64;
  }
  std::int64_t value;
  Rank rank;
};

Variant DivideIntegers(const Integer& a, const Integer& b) {
  if (b.value == 0) throw EDivByZero(u"Division by zero");
  const Rank rank = std::max(a.rank, b.rank);
  if (b.value == -1) return Combine<Operation::kSubtract>({rank, 0, 0}, {rank, a.value, 0});
  return FromInteger(a.value / b.value, rank);
}

Variant RestOfIntegers(const Integer& a, const Integer& b) {
  if (b.value == 0) throw EDivByZero(u"Division by zero");
  // Dividing the lowest integer by -1 would trap.
  return FromInteger(b.value == -1 ? 0 : a.value % b.value, std::max(a.rank, b.rank));
}

// And or Or when at least one operand is Null: the other one decides when it is `deciding`.
Variant LogicalWithNull(const Variant& a, const Variant& b, bool deciding) {
  const Variant& other = a.IsNull() ? b : a;
  const bool decides = other.Kind() == VariantKind::kBoolean && other.BooleanValue() == deciding;
  return decides ? Variant(deciding) : Variant::Null();
}

}  // namespace

Variant operator+(const Variant& a, const Variant& b) {
  return Calculate<Operation::kAdd>(a, b);
}

Variant operator-(const Variant& a, const Variant& b) {
  return Calculate<Operation::kSubtract>(a, b);
}

Variant operator*(const Variant& a, const Variant& b) {
  return Calculate<Operation::kMultiply>(a, b);
}

Variant operator/(const Variant& a, const Variant& b) {
  return Calculate<Operation::kDivide>(a, b);
}

Variant operator-(const Variant& a) {
  if (a.IsNull()) return a;
  RefuseArrays(a, a);
  const Number number = ReadNumber(a);
  if (number.IsReal()) return -number.real;
  return Combine<Operation::kSubtract>({number.rank, 0, 0}, number);
}

Variant VarDiv(const Variant& a, const Variant& b) {
  if (AnyNull(a, b)) return Variant::Null();
  RefuseArrays(a, b);
  return DivideIntegers(Integer(a), Integer(b));
}

Variant VarMod(const Variant& a, const Variant& b) {
  if (AnyNull(a, b)) return Variant::Null();
  RefuseArrays(a, b);
  return RestOfIntegers(Integer(a), Integer(b));
}

Variant VarAnd(const Variant& a, const Variant& b) {
  if (BothOf(VariantKind::kBoolean, a, b)) return a.BooleanValue() && b.BooleanValue();
  if (AnyNull(a, b)) return LogicalWithNull(a, b, false);
  RefuseArrays(a, b);
  const Integer left(a);
  const Integer right(b);
  return FromInteger(left.value & right.value, std::max(left.rank, right.rank));
}

Variant VarOr(const Variant& a, const Variant& b) {
  if (BothOf(VariantKind::kBoolean, a, b)) return a.BooleanValue() || b.BooleanValue();
  if (AnyNull(a, b)) return LogicalWithNull(a, b, true);
  RefuseArrays(a, b);
  const Integer left(a);
  const Integer right(b);
  return FromInteger(left.value | right.value, std::max(left.rank, right.rank));
}

Variant VarNot(const Variant& a) {
  if (a.IsNull()) return a;
  if (a.Kind() == VariantKind::kBoolean) return !a.BooleanValue();
  RefuseArrays(a, a);
  const Integer operand(a);
  return FromInteger(~operand.value, operand.rank);
}

void VarAddTo(Variant& a, const Variant& b) {
  if (b.IsString() && IsTextOrEmpty(a)) {
    a.AppendText(b.StringValue());
  } else if (!(a.IsString() && b.IsEmpty())) {
    a = a + b;
  }
}

}  // namespace zentavo
