#include "zentavo/platform/code_pages.h"

#include <gtest/gtest.h>

namespace zentavo::platform {
namespace {

struct Row {
  std::uint32_t code_page;
  std::u16string_view text;
  std::string_view bytes;
};

TEST(CodePages, ConvertBothWays) {
  for (const Row& row :
       {Row{1253, u"Αθήνα €", "\xC1\xE8\xDE\xED\xE1 \x80"}, Row{1252, u"Ünï", "\xDCn\xEF"},
        Row{737, u"Αω", "\x80\xE0"}, Row{28597, u"Ωώ", "\xD9\xFE"}, Row{932, u"a日", "a\x93\xFA"},
        Row{65000, u"aΩ", "a+A6k-"},
        Row{65001, u"aΩ€\U0001F600", "a\xCE\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"},
        Row{1253, u"", ""}}) {
    SCOPED_TRACE(row.code_page);
    EXPECT_TRUE(CodePageKnown(row.code_page));
    EXPECT_EQ(EncodeCodePage(row.text, row.code_page), row.bytes);
    EXPECT_EQ(DecodeCodePage(row.bytes, row.code_page), row.text);
  }
}

TEST(CodePages, ReplaceWhatHasNoCounterpart) {
  constexpr Row kRows[] = {
      {1253, u"a日Ω", "a?\xD9"},     {1253, u"éĀ", "??"},  // no best fit
      {1253, u"\u200D\u2028", "??"},                       // nothing is dropped
      {1253, u"\U0001F600.", "??."},                       // one for each unit
      {1253, u"\xD800.", "?."},      {65001, u"\xDC00.", "\xEF\xBF\xBD."},
  };
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.code_page);
    EXPECT_EQ(EncodeCodePage(row.text, row.code_page), row.bytes);
  }
}

TEST(CodePages, ReplaceInvalidBytes) {
  constexpr Row kRows[] = {
      {1253, u"Α\uFFFDΒ", "\xC1\xD2\xC2"},
      {932, u"a\uFFFD", "a\x81"},  // a character cut in two
      {65001, u"\uFFFD.", "\xFF."},
      {65001, u"\uFFFD", "\xE2\x82"},
  };
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.code_page);
    EXPECT_EQ(DecodeCodePage(row.bytes, row.code_page), row.text);
  }
  // What was left unfinished does not reach the next text.
  EXPECT_EQ(DecodeCodePage("\x93\xFA", 932), u"日");
}

TEST(CodePages, EveryByteThatDecodesComesBack) {
  for (const std::uint32_t page : {437, 737, 850, 866, 1250, 1251, 1252, 1253, 1254, 28597}) {
    for (int value = 0; value < 256; ++value) {
      const std::string byte(1, static_cast<char>(value));
      const std::u16string text = DecodeCodePage(byte, page).value();
      if (text != u"\uFFFD") {
        EXPECT_EQ(EncodeCodePage(text, page), byte) << page << ' ' << value;
      }
    }
  }
}

TEST(CodePages, LongTextsGrow) {
  std::u16string text;
  for (int i = 0; i < 50'000; ++i) text += u"€日a";
  const std::string bytes = EncodeCodePage(text, kCodePageUtf8).value();
  EXPECT_EQ(bytes.size(), 350'000U);
  EXPECT_EQ(DecodeCodePage(bytes, kCodePageUtf8), text);
}

TEST(CodePages, UnknownNumbersGiveNothing) {
  for (const std::uint32_t page : {0U, 1U, 3U, 1200U, 1201U, 12345U, 4'000'000'000U}) {
    SCOPED_TRACE(page);
    EXPECT_FALSE(CodePageKnown(page));
    EXPECT_EQ(EncodeCodePage(u"a", page), std::nullopt);
    EXPECT_EQ(DecodeCodePage("a", page), std::nullopt);
  }
  EXPECT_TRUE(CodePageKnown(DefaultCodePage()));
}

}  // namespace
}  // namespace zentavo::platform
