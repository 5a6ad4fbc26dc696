#include "zentavo/genlib/amounts.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>

#include "zentavo/foundation/errors.h"
#include "zentavo/framework/decimal_digits.h"
#include "zentavo/framework/number_text.h"

namespace zentavo {

namespace {

// Carries what lies just below a half over it.
constexpr double kNudge = 0.000001;
constexpr double kMostSteps = 9.223e18;  // what a 64-bit integer holds, nearly

// Powers of ten that a double holds exactly.
constexpr auto kPowers = [] {
  std::array<double, 23> powers{};
  powers[0] = 1;
  for (std::size_t i = 1; i < powers.size(); ++i) powers[i] = powers[i - 1] * 10;
  return powers;
}();

double PowerOfTen(int exponent) {
  const unsigned magnitude =
      exponent < 0 ? 0U - static_cast<unsigned>(exponent) : static_cast<unsigned>(exponent);
  double power = magnitude < kPowers.size() ? kPowers[magnitude] : 1;
  if (magnitude >= kPowers.size()) {
    double square = 10;
    for (unsigned rest = magnitude; rest > 0; rest /= 2, square *= square) {
      if (rest % 2 == 1) power *= square;
    }
  }
  return exponent < 0 ? 1 / power : power;
}

// Rounds |value| * factor, which `scaled` is or was cut from. The nearest integer, halves away from
// zero, is what the decimal text with no decimals says: a double shows a half only if it is one.
double RoundScaled(double value, double scaled, double factor) {
  if (factor == 0 && std::isfinite(value)) return 0;
  const double rounded = std::round(scaled + kNudge) / factor;
  if (!std::isfinite(rounded)) return value;
  return value < 0 ? -rounded : rounded;
}

double Tolerance(double magnitude_a, double magnitude_b) {
  struct Row {
    double limit;
    double tolerance;
  };
  static constexpr Row kRows[] = {
      {999999999.9999, 0.0001}, {99999999.9999, 0.00001}, {9999999.9999, 0.000001},
      {999999.9999, 0.0000001}, {99999.9999, 0.00000001},
  };
  for (const auto& [limit, tolerance] : kRows) {
    // Written so that NaN counts as above the limit.
    if (!(magnitude_a <= limit) || !(magnitude_b <= limit)) return tolerance;
  }
  return 0.000000001;
}

}  // namespace

bool ZentavoDoubleEqual(double A, double B) {
  return !(std::fabs(A - B) >= Tolerance(std::fabs(A), std::fabs(B)));
}

double ZentavoDoubleRnd(double Value, int Decimals) {
  const double factor = PowerOfTen(Decimals);
  return RoundScaled(Value, std::fabs(Value) * factor, factor);
}

double ZentavoDoubleRnd(double Value, int Decimals, int Mode) {
  if (Mode != rndUp && Mode != rndDown) return ZentavoDoubleRnd(Value, Decimals);
  const double factor = PowerOfTen(Decimals);
  const double scaled = std::fabs(Value) * factor;
  const double cut = Mode == rndUp ? std::ceil(scaled) : std::floor(scaled);
  if (!(cut <= std::numeric_limits<std::int32_t>::max())) {
    ZentavoErrorFmt(u"%s is too large to be rounded up or down to %d decimals",
                    {FloatToStr(Value), Decimals});
  }
  return RoundScaled(Value, cut, factor);
}

double xARoundProc(double Value, double Step) {
  const double steps_in_one = 1 / Step;
  if (!std::isfinite(steps_in_one) || steps_in_one == 0) {
    ZentavoErrorFmt(u"'%s' is not a step to round to", {FloatToStr(Step)});
  }
  if (!std::isfinite(Value)) return Value;
  const double steps = Value * steps_in_one;
  if (std::fabs(steps) > kMostSteps) {
    const auto decimals = static_cast<int>(std::nearbyint(std::log10(std::fabs(steps_in_one))));
    return RoundToDecimals(Value, std::clamp(decimals, 0, 18));
  }
  const double nudged = steps < 0 ? steps - kNudge : steps + kNudge;
  return static_cast<double>(Round(nudged)) / steps_in_one;
}

}  // namespace zentavo
