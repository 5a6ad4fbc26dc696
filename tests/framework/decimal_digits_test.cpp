#include "zentavo/framework/decimal_digits.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

namespace zentavo {
namespace {

std::string Dump(const DecimalDigits& digits) {
  std::string text = digits.Negative() ? "-0." : "0.";
  return text.append(digits.Digits()) + "e" + std::to_string(digits.Point());
}

TEST(TDecimalDigits, AreTheShortestThatReadBack) {
  const struct {
    double value;
    const char* dump;
  } rows[] = {
      {-0.0, "0.e0"},
      {-2.675, "-0.2675e1"},
      {0.1 + 0.2, "0.30000000000000004e0"},
      {99999999999.9999, "0.999999999999999e11"},
      {9007199254740993.0, "0.9007199254740992e16"},
      {std::numeric_limits<double>::max(), "0.17976931348623157e309"},
      {std::numeric_limits<double>::denorm_min(), "0.5e-323"},
  };
  for (const auto& row : rows) EXPECT_EQ(Dump(DecimalDigits(row.value)), row.dump) << row.value;
}

TEST(TDecimalDigits, OfWholeNumbersTakeDecimals) {
  constexpr auto kMin = std::numeric_limits<std::int64_t>::min();
  EXPECT_EQ(Dump(DecimalDigits(std::int64_t{125000}, 4)), "0.125e2");
  EXPECT_EQ(Dump(DecimalDigits(std::int64_t{-1}, 4)), "-0.1e-3");
  EXPECT_EQ(Dump(DecimalDigits(std::int64_t{0}, 4)), "0.e0");
  EXPECT_EQ(Dump(DecimalDigits(kMin)), "-0.9223372036854775808e19");
}

TEST(TDecimalDigits, DigitAtCountsFromThePoint) {
  const DecimalDigits digits(120.45);
  std::string around;
  for (int place = 3; place >= -3; --place) around += digits.DigitAt(place);
  EXPECT_EQ(around, "0120450");
}

TEST(RoundToDecimals, SendsHalvesAwayFromZero) {
  const struct {
    double value;
    int decimals;
    double rounded;
  } rows[] = {
      {2.675, 2, 2.68},       {-1.005, 2, -1.01},    {2.5, 0, 3},  {0.49, 0, 0},
      {9.995, 2, 10},         {999.5, 0, 1000},      {0.04, 0, 0}, {1250, -2, 1300},
      {50, -2, 100},          {49, -2, 0},           {5, -2, 0},   {1e300, 2, 1e300},
      {1.5, 2147483647, 1.5}, {1.5, -2147483647, 0},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(RoundToDecimals(row.value, row.decimals), row.rounded)
        << row.value << " to " << row.decimals;
  }
}

TEST(RoundToDecimals, KeepsWhatIsNoNumberAndGivesZeroNoSign) {
  EXPECT_TRUE(std::isnan(RoundToDecimals(std::numeric_limits<double>::quiet_NaN(), 2)));
  EXPECT_EQ(RoundToDecimals(-std::numeric_limits<double>::infinity(), 2),
            -std::numeric_limits<double>::infinity());
  EXPECT_FALSE(std::signbit(RoundToDecimals(-0.001, 2)));
  EXPECT_FALSE(std::signbit(RoundToDecimals(-0.0, 2)));
  EXPECT_TRUE(std::isinf(RoundToDecimals(std::numeric_limits<double>::max(), -308)));
}

}  // namespace
}  // namespace zentavo
