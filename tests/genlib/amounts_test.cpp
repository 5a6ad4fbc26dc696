#include "zentavo/genlib/amounts.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "tests/support/error_of.h"
#include "zentavo/foundation/errors.h"
#include "zentavo/framework/number_text.h"

namespace zentavo {
namespace {

using testing::ErrorOf;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

TEST(ZentavoDoubleEqual, GoesByMagnitudeAndTakesNaNForAnything) {
  struct Row {
    double a, difference;
    bool equal;
  };
  for (const Row& row :
       {Row{1000000000.0, 0.00005, true}, Row{1000000000.0, 0.00011, false},
        Row{100000000.0, 0.000009, true}, Row{100000000.0, 0.000011, false},
        Row{1e7, 0.0000009, true}, Row{1e7, 0.0000011, false}, Row{1e6, 0.00000009, true},
        Row{1e6, 0.00000011, false}, Row{1e5, 0.000000009, true}, Row{1e5, 0.000000011, false},
        Row{1.0, 0.0000000005, true}, Row{1.0, 0.000000002, false},
        Row{99999.0, 0.000000002, false}, Row{0, 1e-10, true}, Row{0, 1e-9, false}}) {
    EXPECT_EQ(ZentavoDoubleEqual(row.a, row.a + row.difference), row.equal) << row.a;
    EXPECT_EQ(ZentavoDoubleEqual(-row.a - row.difference, -row.a), row.equal) << row.a;
  }
  EXPECT_TRUE(ZentavoDoubleEqual(kNaN, 1));
  EXPECT_TRUE(ZentavoDoubleEqual(kInfinity, kInfinity));
  EXPECT_FALSE(ZentavoDoubleEqual(kInfinity, 1e308));
}

TEST(ZentavoDoubleRnd, RoundsHalvesAwayFromZero) {
  struct Row {
    double value;
    int decimals;
    double expected;
  };
  for (const Row& row :
       {Row{2.5, 0, 3}, Row{-2.5, 0, -3}, Row{1.005, 2, 1.01}, Row{2.675, 2, 2.68},
        Row{-2.675, 2, -2.68}, Row{1.00499, 2, 1}, Row{2.4999995, 0, 3}, Row{2.499998, 0, 2},
        Row{1250, -2, 1300}, Row{-1249, -2, -1200}, Row{49.9, -2, 0}, Row{1e308, 2, 1e308},
        Row{1e300, 400, 1e300}, Row{5, -400, 0}, Row{1e22, 0, 1e22}, Row{5, -32768, 0},
        Row{0, 32767, 0}, Row{kInfinity, 2, kInfinity}, Row{-kInfinity, -400, -kInfinity}}) {
    EXPECT_EQ(ZentavoDoubleRnd(row.value, row.decimals), row.expected) << row.value;
  }
  EXPECT_TRUE(std::isnan(ZentavoDoubleRnd(kNaN, 2)));
}

TEST(ZentavoDoubleRnd, DecidesLikePrintedAmounts) {
  std::mt19937_64 random(3);  // NOLINT(bugprone-random-generator-seed): the same cases each time
  for (int run = 0; run < 20000; ++run) {
    const int decimals = static_cast<int>(random() % 5);
    const double factor = std::pow(10.0, decimals);
    const double halves = static_cast<double>(random() >> (random() % 60 + 4)) / 2;
    const double value = run % 2 == 0 ? halves / factor : halves * 1e-7;
    const String text = FloatToFixed(value * factor + 0.000001, 0, Grouping::kNone, u'.', u',');
    EXPECT_EQ(ZentavoDoubleRnd(value, decimals), StrToFloat(text, TFormatSettings()) / factor)
        << value << " to " << decimals;
  }
}

TEST(ZentavoDoubleRnd, RoundsUpAndDownOnMagnitudesOf32Bits) {
  EXPECT_EQ(ZentavoDoubleRnd(2.001, 2, rndUp), 2.01);
  EXPECT_EQ(ZentavoDoubleRnd(-2.001, 2, rndUp), -2.01);
  EXPECT_EQ(ZentavoDoubleRnd(-2.009, 2, rndDown), -2);
  EXPECT_EQ(ZentavoDoubleRnd(2.675, 2, 7), 2.68);
  EXPECT_EQ(ZentavoDoubleRnd(1.1, 2, rndUp), 1.11);
  EXPECT_EQ(ZentavoDoubleRnd(2147483647, 0, rndUp), 2147483647);
  for (const double value : {2147483647.5, -2147483648.0, kInfinity, kNaN}) {
    EXPECT_EQ(ErrorOf<EZentavoError>([&] { ZentavoDoubleRnd(value, 0, rndUp); }),
              ToUtf8(FloatToStr(value)) + " is too large to be rounded up or down to 0 decimals");
  }
}

TEST(xARoundProc, RoundsToStepsAndRefusesOthers) {
  struct Row {
    double value, step, expected;
  };
  for (const Row& row : {Row{12.34, 0.05, 12.35}, Row{12.34, 0.5, 12.5}, Row{12.25, 0.5, 12.5},
                         Row{-12.25, 0.5, -12.5}, Row{2.5, 1, 3}, Row{-2.5, 1, -3}, Row{17, 5, 15},
                         Row{12.34, -0.5, 12.5}, Row{1e20, 0.01, 1e20}, Row{-1e300, 0.1, -1e300},
                         Row{1e308, 1e-308, 1e308}, Row{kInfinity, 1, kInfinity}}) {
    EXPECT_DOUBLE_EQ(xARoundProc(row.value, row.step), row.expected) << row.value;
  }
  EXPECT_TRUE(std::isnan(xARoundProc(kNaN, 1)));
  for (const double step : {0.0, kNaN, kInfinity}) {
    EXPECT_EQ(ErrorOf<EZentavoError>([&] { xARoundProc(1, step); }),
              testing::Quoted(ToUtf8(FloatToStr(step))) + " is not a step to round to");
  }
}

}  // namespace
}  // namespace zentavo
