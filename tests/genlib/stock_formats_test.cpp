#include "zentavo/genlib/stock_formats.h"

#include <gtest/gtest.h>

#include "support/thread_settings.h"
#include "zentavo/framework/date_time.h"

namespace zentavo {
namespace {

TEST(StockFormatSettings, AreFixed) {
  const testing::ThreadSettings scope(testing::CommaSettings());
  const TDateTime date = EncodeDate(2021, 3, 4);
  EXPECT_EQ(DateToStr(date, StockFormatSettings(0)), u"04/03/2021");
  EXPECT_EQ(DateToStr(date, StockFormatSettings(1)), u"03/04/2021");
  EXPECT_EQ(DateToStr(date, StockFormatSettings(2)), u"2021-03-04");
  for (const int number : {-1, 0, 1, 2, kStockFormatCount}) {
    EXPECT_EQ(StockFormatSettings(number).DecimalSeparator, u'.') << number;
  }
  EXPECT_EQ(&StockFormatSettings(-1), &StockFormatSettings());
  EXPECT_EQ(&StockFormatSettings(kStockFormatCount), &StockFormatSettings());
}

}  // namespace
}  // namespace zentavo
