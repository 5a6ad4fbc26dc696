#include "zentavo/platform/code_pages.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "single_byte_pages.h"

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
        Row{737, u"Αω", "\x80\xE0"}, Row{28597, u"Ωώ", "\xD9\xFE"},
        Row{437, u"\x1A\x1C\x7F", "\x1A\x1C\x7F"},
        Row{932, u"a日\x1A\x1C\x7F", "a\x93\xFA\x1A\x1C\x7F"}, Row{65000, u"aΩ", "a+A6k-"},
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

// Of each line the page.
std::vector<std::pair<std::uint32_t, std::string>> RecordedPages() {
  std::ifstream file(ZENTAVO_RECORDED_PAGES);
  std::vector<std::pair<std::uint32_t, std::string>> pages;
  for (std::string line; std::getline(file, line);) {
    if (!line.starts_with('#')) pages.emplace_back(std::stoul(line), line);
  }
  return pages;
}

// A byte of single-byte pages to its unit and back, in both directions every value there is.
TEST(CodePages, SingleBytePagesAreTheRecordedOnes) {
  const auto pages = RecordedPages();
  EXPECT_EQ(pages.size(), 44U);
  const std::string bytes = testing::AllBytes();
  for (const auto& [page, line] : pages) {
    EXPECT_EQ(testing::RecordOf(page), line);
    const std::u16string decoded = DecodeCodePage(bytes, page, LooseBytes::kKept).value();
    EXPECT_EQ(decoded.substr(0, 128), testing::AllUnits().substr(0, 128)) << page;
    EXPECT_EQ(EncodeCodePage(decoded, page), bytes) << page;
    EXPECT_EQ(FitsCodePage(decoded, page), true) << page;
  }
}

// The list of pages that differ: in 7-bit ASCII Windows drops the eighth bit of a byte, elsewhere
// such a byte is no character.
TEST(CodePages, SevenBitAsciiIsThePlatforms) {
  for (int value = 0; value < 0x100; ++value) {
    const char16_t unit = static_cast<char16_t>(value);
    const std::string byte(1, static_cast<char>(value));
    const std::u16string decoded = DecodeCodePage(byte, 20127).value();
    if (value < 0x80) {
      EXPECT_EQ(decoded, std::u16string(1, unit));
      EXPECT_EQ(EncodeCodePage(decoded, 20127), byte);
    } else {
      ASSERT_EQ(decoded.size(), 1U) << value;
      EXPECT_TRUE(decoded[0] == u'\uFFFD' || decoded[0] == (unit & 0x7F)) << value;
      EXPECT_EQ(EncodeCodePage(std::u16string(1, unit), 20127), "?") << value;
    }
  }
}

TEST(CodePages, LooseBytesAreReplacedOrKept) {
  EXPECT_EQ(DecodeCodePage("\xC1\xD2\x81", 1253), u"Α\uFFFD\x81");
  EXPECT_EQ(DecodeCodePage("\xC1\xD2\x81", 1253, LooseBytes::kKept), u"Α\xF8FA\x81");
  EXPECT_EQ(EncodeCodePage(u"\xF8FA", 1253), "\xD2");
}

TEST(CodePages, BestFitsAreOnlyTakenWhenAskedFor) {
  struct Fit {
    std::uint32_t code_page;
    std::u16string_view text;
    std::string_view exact, best;
  };
  constexpr Fit kFits[] = {
      {1252, u"Ā\uFF21±∞日", "??\xB1??",
       "AA\xB1"
       "8?"},
      {1253, u"éα", "?\xE1", "e\xE1"},
      {737, u"ΐΰ\uFF21", "???", "??A"},
      {10000, u"Ā", "?", "?"},
  };
  for (const Fit& fit : kFits) {
    SCOPED_TRACE(fit.code_page);
    EXPECT_EQ(EncodeCodePage(fit.text, fit.code_page), fit.exact);
    EXPECT_EQ(EncodeCodePage(fit.text, fit.code_page, CodePageFit::kBest), fit.best);
    EXPECT_EQ(FitsCodePage(fit.text, fit.code_page), false);
  }
}

TEST(CodePages, FitsSaysWhetherAllHaveAPlace) {
  struct Question {
    std::uint32_t code_page;
    std::u16string_view text;
    bool fits;
  };
  constexpr Question kQuestions[] = {
      {1252, u"", true},         {1252, u"?€é", true},          {1252, u"Ω", false},
      {1253, u"Ω\u200D", false}, {932, u"a日", true},           {932, u"日ß", false},
      {936, u"\u200D", false},   {65001, u"Ω\U0001F600", true}, {65001, u"\xDC00", false},
      {65000, u"aΩ", true},      {65000, u"\xD800", true},
  };
  for (const Question& question : kQuestions) {
    EXPECT_EQ(FitsCodePage(question.text, question.code_page), question.fits)
        << question.code_page << ' ' << question.text.size();
  }
  // A long text whose last character decides.
  std::u16string text(100'001, u'日');
  EXPECT_EQ(FitsCodePage(text, 932), true);
  text.back() = u'ß';
  EXPECT_EQ(FitsCodePage(text, 932), false);
  text.assign(100'001, u'Ω').back() = u'é';
  EXPECT_EQ(FitsCodePage(text, 1253), false);
}

TEST(CodePages, ThreadsShareThePages) {
  const auto pages = RecordedPages();
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&pages] {
      for (const auto& [page, line] : pages) EXPECT_EQ(EncodeCodePage(u"Az", page), "Az") << line;
    });
  }
  for (std::thread& thread : threads) thread.join();
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
    EXPECT_EQ(FitsCodePage(u"a", page), std::nullopt);
  }
  EXPECT_TRUE(CodePageKnown(DefaultCodePage()));
}

}  // namespace
}  // namespace zentavo::platform
