#include "zentavo/framework/decimal_digits.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace zentavo {
namespace {

TEST(RoundToDecimals, SendsHalvesAwayFromZero) {
  struct Row {
    double value;
    int decimals;
    double rounded;
  };
  for (const Row& row :
       {Row{2.675, 2, 2.68}, Row{-1.005, 2, -1.01}, Row{2.5, 0, 3}, Row{0.49, 0, 0},
        Row{9.995, 2, 10}, Row{999.5, 0, 1000}, Row{0.04, 0, 0}, Row{1250, -2, 1300},
        Row{50, -2, 100}, Row{49, -2, 0}, Row{5, -2, 0}, Row{1e300, 2, 1e300},
        Row{1.5, 2147483647, 1.5}, Row{1.5, -2147483647, 0}}) {
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
