#include "zentavo/framework/code_page.h"

#include <gtest/gtest.h>

#include "tests/support/error_of.h"

namespace zentavo {
namespace {

TEST(CodePage, SystemCodePageCanBeSetAndReset) {
  const std::uint32_t platform_page = SystemCodePage();
  SetSystemCodePage(1253);
  EXPECT_EQ(SystemCodePage(), 1253U);
  EXPECT_EQ(ToSystemAnsi(u"Ω日"), "\xD9?");
  EXPECT_EQ(FromSystemAnsi("\xD9"), u"Ω");
  SetSystemCodePage(65001);
  EXPECT_EQ(ToSystemAnsi(u"Ω"), "\xCE\xA9");
  SetSystemCodePage(0);
  EXPECT_EQ(SystemCodePage(), platform_page);
}

TEST(CodePage, UnknownNumbersRaise) {
  using testing::ErrorOf;
  const std::uint32_t before = SystemCodePage();
  const std::string error = "Unknown code page 12345";
  EXPECT_EQ(ErrorOf<EConvertError>([] { SetSystemCodePage(12345); }), error);
  EXPECT_EQ(ErrorOf<EConvertError>([] { ToCodePage(u"a", 12345); }), error);
  EXPECT_EQ(ErrorOf<EConvertError>([] { FromCodePage("a", 12345); }), error);
  EXPECT_EQ(SystemCodePage(), before);
}

}  // namespace
}  // namespace zentavo
