#include "zentavo/json/number_form.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "zentavo/framework/number_text.h"
#include "zentavo/genlib/stock_formats.h"

namespace zentavo::json_internal {

namespace {

// The number of millionths that `value` prints, when plain arithmetic tells it for sure: a decimal
// of at most 15 digits that reads back as the value is its shortest one, and far from a half both
// roundings agree.
std::optional<std::uint64_t> Millionths(double value) {
  constexpr double kMillion = 1e6;
  const double scaled = value * kMillion;
  if (!(scaled < 1e15)) return std::nullopt;
  const auto nearest = static_cast<std::int64_t>(scaled + 0.5);
  const auto whole = static_cast<double>(nearest);
  if (whole / kMillion == value) return static_cast<std::uint64_t>(nearest);
  constexpr double kErrorBelow = 1e11;  // the scaled value is then exact to 2^-16
  const bool half = std::abs(scaled - std::floor(scaled) - 0.5) < 1.0 / 1024;
  if (scaled >= kErrorBelow || half) return std::nullopt;
  return static_cast<std::uint64_t>(nearest);
}

}  // namespace

char16_t* WriteDouble(char16_t* out, double value) {
  const std::optional<std::uint64_t> millionths = Millionths(std::abs(value));
  if (millionths) return WriteMillionths(out, value < 0, *millionths);
  const String text = FormatFloat(u"######0.000000", value, StockFormatSettings());
  return std::copy(text.begin(), text.end(), out);
}

}  // namespace zentavo::json_internal
