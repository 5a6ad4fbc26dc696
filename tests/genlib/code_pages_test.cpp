#include "zentavo/genlib/code_pages.h"

#include <gtest/gtest.h>

#include "tests/support/error_of.h"
#include "zentavo/framework/code_page.h"
#include "zentavo/framework/exception.h"

namespace zentavo {
namespace {

TEST(AnsiToUnicode, TrimsAndConverts) {
  struct Row {
    std::string_view text;
    std::uint32_t code_page;
    StringView result;
  };
  constexpr Row kRows[] = {
      {" \t\xC1\xE8\xDE\xED\xE1 7\r\n", 1253, u"Αθήνα 7"},
      {"", 1253, u""},
      {" \x01 ", 1253, u""},
      {"\xD2\x81", 1253, u"\xF8FA\x81"},  // bytes without a character
      {"\x80", 737, u"Α"},
      {"\xA0", 1252, u"\u00A0"},  // no blank
  };
  for (const Row& row : kRows) {
    EXPECT_EQ(AnsiToUnicode(row.text, row.code_page), row.result) << row.text;
  }
  EXPECT_EQ(AnsiToUnicode(" \x93\xFA"
                          "a ",
                          932),
            StringView(u"日a\0", 3));
  EXPECT_EQ(AnsiToUnicode("\xCE\xA9", 65001), StringView(u"Ω\0", 2));
}

TEST(Utf8ToCodePage, TakesTheNearestCharacter) {
  struct Row {
    std::string_view text;
    std::int32_t code_page;
    std::string_view result;
  };
  constexpr Row kRows[] = {
      {"Αθήνα €", 1253, "\xC1\xE8\xDE\xED\xE1 \x80"},
      {"Ā∞日", 1252, "A8?"},
      {"a\xF0\x9F\x98\x80.", 1252, "a??."},  // a mark for each unit
      {"\xFF", 1252, "?"},
      {"", 1253, ""},
  };
  for (const Row& row : kRows) {
    EXPECT_EQ(Utf8ToCodePage(row.text, row.code_page), row.result) << row.text;
  }
  using namespace std::string_view_literals;
  EXPECT_EQ(Utf8ToCodePage("日本a", 932), "\x93\xFA\0"sv);
  EXPECT_EQ(Utf8ToCodePage("a日", 932), "a\0"sv);
  EXPECT_EQ(Utf8ToCodePage("ΩΩΩ", 65001), "\xCE\xA9\0"sv);
  EXPECT_EQ(Utf8ToCodePage("\xF0\x9F\x98\x80", 65001), "\0\0"sv);
}

TEST(NotInCodePage, AsksForAnExactPlace) {
  struct Row {
    StringView text;
    std::int32_t code_page;
    bool missing;
  };
  constexpr Row kRows[] = {
      {u"plain ASCII?", 1252, false}, {u"Ω", 1252, true},     {u"Ā", 1252, true},
      {u"Ωώ€", 1253, false},          {u"é", 1253, true},     {u"", 437, false},
      {u"\U0001F600", 932, true},     {u"日Ω", 932, false},   {u"\U0001F600Ω", 65001, false},
      {u"a\xD800", 65001, true},      {u"\xDC00", 932, true},
  };
  for (const Row& row : kRows) {
    EXPECT_EQ(NotInCodePage(row.text, row.code_page), row.missing) << ToUtf8(row.text);
  }
}

TEST(CodePages, ZeroIsTheSystemsAndUnknownNumbersRaise) {
  SetSystemCodePage(1253);
  EXPECT_EQ(Utf8ToCodePage("Ω", 0), "\xD9");
  EXPECT_EQ(AnsiToUnicode("\xD9", 0), u"Ω");
  EXPECT_FALSE(NotInCodePage(u"Ω", 0));
  SetSystemCodePage(0);
  using testing::ErrorOf;
  EXPECT_EQ(ErrorOf([] { Utf8ToCodePage("a", 12345); }), "Unknown code page 12345");
  EXPECT_EQ(ErrorOf([] { AnsiToUnicode("", 12345); }), "Unknown code page 12345");
  EXPECT_EQ(ErrorOf([] { NotInCodePage(u"a", -1); }), "Unknown code page -1");
}

// Recorded on Windows (under Wine): the sum over all languages and sub-languages that have a page,
// and some by themselves.
TEST(GetCodePageFromLocale, KnowsEveryLanguage) {
  struct Row {
    std::uint32_t locale;
    std::int32_t code_page;
  };
  constexpr Row kRows[] = {
      {0x0408, 1253}, {0x0008, 1253}, {0x0409, 1252},  {0x041F, 1254}, {0x0402, 1251},
      {0x0418, 1250}, {0x241A, 1250}, {0x281A, 1251},  {0x0411, 932},  {0x0404, 950},
      {0x0804, 936},  {0x0412, 949},  {0x041E, 874},   {0x042A, 1258}, {0x040D, 1255},
      {0x0401, 1256}, {0x0425, 1257}, {0x10407, 1252}, {0x007F, 1252}, {0x0439, 0},
      {0x3FF, 0},     {0xFFFF, 0},    {0xFFFFFFFF, 0},
  };
  for (const Row& row : kRows) {
    EXPECT_EQ(GetCodePageFromLocale(row.locale), row.code_page) << row.locale;
  }
  std::uint64_t sum = 0;
  int count = 0;
  for (std::uint32_t locale = 1; locale < 0x60000; ++locale) {
    if (locale % 0x400 == 0 && locale <= 0x1400) continue;  // the user's own
    const auto page = static_cast<std::uint32_t>(GetCodePageFromLocale(locale));
    sum += std::uint64_t{page} * locale;
    count += page != 0;
  }
  EXPECT_EQ(count, 344);
  EXPECT_EQ(sum, 4799435003U);
}

}  // namespace
}  // namespace zentavo
