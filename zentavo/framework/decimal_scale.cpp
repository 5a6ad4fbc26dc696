#include "zentavo/framework/decimal_scale.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>

namespace zentavo::decimal_internal {
namespace {

constexpr std::array<double, 23> kPowersOfTen = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                 1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                                 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr std::uint64_t kExactMantissa = std::uint64_t{1} << 53;
constexpr std::size_t kShortDigits = 15;

std::uint64_t ReadShort(std::string_view digits) {
  std::uint64_t value = 0;
  for (const char digit : digits) value = value * 10 + static_cast<std::uint64_t>(digit - '0');
  return value;
}

}  // namespace

std::optional<double> ExactScale(std::uint64_t mantissa, std::int64_t exponent) {
  if (mantissa > kExactMantissa || exponent < -22 || exponent > 22) return std::nullopt;
  const auto value = static_cast<double>(mantissa);
  return exponent < 0 ? value / kPowersOfTen[static_cast<std::size_t>(-exponent)]
                      : value * kPowersOfTen[static_cast<std::size_t>(exponent)];
}

double DigitsToDouble(std::string_view digits, std::int64_t exponent) {
  if (digits.size() <= kShortDigits) {
    if (const auto exact = ExactScale(ReadShort(digits), exponent)) return *exact;
  }
  if (digits.find_first_not_of('0') == std::string_view::npos) return 0;
  const std::int64_t point = static_cast<std::int64_t>(digits.size()) + exponent;
  std::array<char, kMaxDigits + 24> text;
  char* end = std::copy(digits.begin(), digits.end(), text.data());
  *end++ = 'e';
  const std::int64_t bounded = std::clamp<std::int64_t>(exponent, -100'000, 100'000);
  end = std::to_chars(end, text.data() + text.size(), bounded).ptr;
  double value = 0;
  const auto read = std::from_chars(text.data(), end, value);
  if (read.ec == std::errc()) return value;
  return point > 0 ? std::numeric_limits<double>::infinity() : 0;
}

}  // namespace zentavo::decimal_internal
