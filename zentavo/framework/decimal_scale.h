// Decimal digits to the nearest double.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace zentavo::decimal_internal {

// `mantissa` x 10^exponent when one rounding step gives it: the mantissa and the power of ten are
// doubles without a rounding error.
std::optional<double> ExactScale(std::uint64_t mantissa, std::int64_t exponent);

// The double nearest to the whole number `digits` x 10^exponent; `digits` holds at most
// kMaxDigits digits and may be empty (0). Infinity beyond the doubles' range, 0 below it.
inline constexpr std::size_t kMaxDigits = 772;
double DigitsToDouble(std::string_view digits, std::int64_t exponent);

}  // namespace zentavo::decimal_internal
