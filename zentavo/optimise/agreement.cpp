#include "zentavo/optimise/agreement.h"

#include <cmath>
#include <optional>

#include "zentavo/framework/exception.h"
#include "zentavo/framework/number_text.h"
#include "zentavo/framework/variant_convert.h"
#include "zentavo/framework/variant_operators.h"

namespace zentavo::optimise_internal {

namespace {

// As the variants compare, without the cost of an exception for a text that is no number.
bool TextEqualsNumber(const Variant& text, const Variant& number) {
  const std::optional<double> read = TryStrToFloat(text.StringValue(), u'.');
  return read && Variant(*read) == number;
}

bool AreEqual(const Variant& left, const Variant& right) {
  if (left.IsString() && right.IsNumeric()) return TextEqualsNumber(left, right);
  if (right.IsString() && left.IsNumeric()) return TextEqualsNumber(right, left);
  try {
    return left == right;
  } catch (const Exception&) {
    return false;
  }
}

bool AreNear(const Variant& left, const Variant& right, double tolerance) {
  return !(std::fabs(VarToDouble(left - right)) > tolerance);
}

}  // namespace

bool CellsAgree(const Variant& left, const Variant& right, double tolerance) {
  if (AreEqual(left, right)) return true;
  return tolerance > 0 && IsFloat(left) && IsFloat(right) && AreNear(left, right, tolerance);
}

}  // namespace zentavo::optimise_internal
