#include "zentavo/genlib/output_text.h"

#include <gtest/gtest.h>

#include "tests/support/error_of.h"
#include "zentavo/foundation/errors.h"

namespace zentavo {
namespace {

// All lines, with '|' behind each.
String Wrapped(StringView text, std::int32_t width) {
  String lines;
  std::int32_t position = 1;
  while (position <= static_cast<std::int32_t>(text.size())) {
    lines += ExtractProtasis(text, width, position) + u"|";
  }
  return lines;
}

TEST(ExtractProtasis, TakesLinesOfAtMostTheWidth) {
  constexpr struct {
    const char16_t* text;
    std::int32_t width;
    const char16_t* expected;
  } kRows[] = {
      {u"the quick brown fox", 10, u"the quick|brown|fox|"},
      {u"abcdefgh", 3, u"abc|def|gh|"},
      {u"abc def", 20, u"abc|def|"},  // breaks at the last blank although all would fit
      {u"ab\rcd ef", 8, u"ab|cd|ef|"},
      {u"  ab\rc d", 8, u"ab|c|d|"},
      {u"a\r\nb c", 9, u"a|b|c|"},
      {u"ab  cd", 4, u"ab|cd|"},
      {u" ", 1, u"|"},
      {u"a", 2147483647, u"a|"},
      {u"", 5, u""},
  };
  for (const auto& row : kRows) {
    EXPECT_EQ(Wrapped(row.text, row.width), row.expected) << ToUtf8(row.text);
  }
}

TEST(ExtractProtasis, IsEmptyBehindTheEndAndRefusesAWidthBelowOne) {
  std::int32_t position = 4;
  EXPECT_EQ(ExtractProtasis(u"abc", 5, position), u"");
  EXPECT_EQ(testing::ErrorOf<EZentavoError>([&] { ExtractProtasis(u"abc", 0, position = 1); }),
            "Line length must be at least 1, not 0");
}

TEST(TrimLiteral, DropsBlanksAndMaskLiteralsAtTheEnd) {
  EXPECT_EQ(TrimLiteral(u"12/03/  ", u"99/99/99"), u"12/03");
  EXPECT_EQ(TrimLiteral(u"12-", u"99/"), u"12-");
  EXPECT_EQ(TrimLiteral(u"12:", u"99:"), u"12:");
  EXPECT_EQ(TrimLiteral(u"a b ", u""), u"a b");
  EXPECT_EQ(TrimLiteral(u"!#$&+-./@\\^", u"!#$&+-./@\\^"), u"");
  EXPECT_EQ(TrimLiteral(u"1//", u"9/"), u"1//");
  EXPECT_EQ(TrimLiteral(u"", u"99"), u"");
}

}  // namespace
}  // namespace zentavo
