#include "zentavo/framework/code_page.h"

#include <gtest/gtest.h>

#include "zentavo/framework/exception.h"

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
  const auto expect_raise = [](auto call) {
    try {
      call();
      ADD_FAILURE() << "nothing raised";
    } catch (const EConvertError& error) {
      EXPECT_EQ(error.Message(), u"Unknown code page 12345");
    }
  };
  const std::uint32_t before = SystemCodePage();
  expect_raise([] { SetSystemCodePage(12345); });
  expect_raise([] { ToCodePage(u"a", 12345); });
  expect_raise([] { FromCodePage("a", 12345); });
  EXPECT_EQ(SystemCodePage(), before);
}

}  // namespace
}  // namespace zentavo
