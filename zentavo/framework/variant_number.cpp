#include "zentavo/framework/variant_number.h"

#include <cmath>
#include <optional>

#include "zentavo/framework/exception.h"
#include "zentavo/framework/number_text.h"
#include "zentavo/framework/variant_convert.h"

namespace zentavo::variant_internal {

namespace {

// From here on a double no longer holds every integer.
constexpr double kExactIntegerLimit = 0x1p53;
constexpr double kInt64Limit = 0x1p63;

Number Real(double value, Rank rank = Rank::kDouble) {
  return {rank, 0, value};
}

Number Whole(std::int64_t value, Rank rank) {
  return {rank, value, 0};
}

Number ReadText(const Variant& value, VariantKind target) {
  const std::optional<double> number = TryStrToFloat(value.StringValue(), u'.');
  if (!number) RaiseCast(value, target);
  return Real(*number);
}

std::int64_t RoundCurrency(std::int64_t units) {
  const std::int64_t quotient = units / kCurrencyScale;
  const std::int64_t rest = units % kCurrencyScale;
  const std::int64_t doubled = (rest < 0 ? -rest : rest) * 2;
  const bool away = doubled > kCurrencyScale || (doubled == kCurrencyScale && quotient % 2 != 0);
  return !away ? quotient : units < 0 ? quotient - 1 : quotient + 1;
}

}  // namespace

void RefuseArrays(const Variant& a, const Variant& b) {
  const bool array = a.Kind() >= VariantKind::kArray || b.Kind() >= VariantKind::kArray;
  if (array) throw EVariantError(u"Invalid variant operation");
}

void RaiseCast(const Variant& value, VariantKind target) {
  String message = u"Could not convert variant of type (";
  message.append(VariantKindName(value.Kind())).append(u") into type (");
  message.append(VariantKindName(target)).append(u")");
  throw EVariantTypeCastError(message);
}

Number ReadAnyNumber(const Variant& value, VariantKind target) {
  switch (value.Kind()) {
    case VariantKind::kEmpty: return Whole(0, Rank::kInteger);
    case VariantKind::kBoolean: return Whole(value.BooleanValue() ? -1 : 0, Rank::kInteger);
    case VariantKind::kInteger: return Whole(value.Int64Value(), Rank::kInteger);
    case VariantKind::kInt64: return Whole(value.Int64Value(), Rank::kInt64);
    case VariantKind::kSingle:
    case VariantKind::kDouble: return Real(value.DoubleValue());
    case VariantKind::kCurrency: return Whole(value.CurrencyUnitsValue(), Rank::kCurrency);
    case VariantKind::kDate: return Real(value.DoubleValue(), Rank::kDate);
    case VariantKind::kString: return ReadText(value, target);
    default: RaiseCast(value, target);
  }
}

std::int64_t ReadInteger(const Variant& value, VariantKind target) {
  const Number number = ReadNumber(value, target);
  if (number.IsInteger()) return number.whole;
  if (number.rank == Rank::kCurrency) return RoundCurrency(number.whole);
  if (value.IsString() && std::fabs(number.real) >= kExactIntegerLimit) {
    const std::optional<std::int64_t> exact = TryStrToInt64(value.StringValue());
    if (exact) return *exact;
  }
  const bool in_range = number.real >= -kInt64Limit && number.real < kInt64Limit;
  if (!in_range) throw ERangeError(u"Range check error");
  return Round(number.real);
}

bool ToCurrencyUnits(const Number& number, std::int64_t& units) {
  if (number.IsInteger()) return !__builtin_mul_overflow(number.whole, kCurrencyScale, &units);
  units = number.whole;
  return true;
}

}  // namespace zentavo::variant_internal
