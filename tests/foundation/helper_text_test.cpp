#include "zentavo/foundation/helper_text.h"

#include <gtest/gtest.h>

#include <limits>

#include "zentavo/platform/directories.h"

namespace zentavo {
namespace {

TEST(StartsWith, AndEndsWithIgnoreCaseForTextsOnly) {
  EXPECT_TRUE(StartsWith(u"Ωμέγα", u"ωΜ"));
  EXPECT_TRUE(StartsWith(u"a", u""));
  EXPECT_FALSE(StartsWith(u"he", u"Hello"));
  EXPECT_FALSE(StartsWith(u"Hello", u'h'));
  EXPECT_TRUE(StartsWith(u"Hello", u'H'));
  EXPECT_FALSE(StartsWith(u"", u'H'));
  EXPECT_TRUE(StartsWith(u"Hello", {u"x", u"HEL"}));
  EXPECT_FALSE(EndsWith(u"a", u"ba"));
  EXPECT_TRUE(EndsWith(u"file.TXT", u".txt"));
}

TEST(SearchInDelimStr, MatchesTheBeginningOfAnElement) {
  const auto search = SearchInDelimStr;
  EXPECT_TRUE(search(u"AB", u"ABC;X") && search(u"x", u"ABC;X") && search(u"b", u"a;;b"));
  EXPECT_TRUE(search(u"B;C", u"a;b;c"));
  EXPECT_FALSE(search(u"BC", u"ABC;X"));
  EXPECT_FALSE(search(u"", u"ABC"));
  EXPECT_FALSE(search(u"a", u"a"));
  EXPECT_FALSE(search(u"abc", u"ab"));
}

TEST(Parts, SplitAtTheDelimiter) {
  EXPECT_EQ(FirstPart(u"a/b/c", u'/'), u"a");
  EXPECT_EQ(LastPart(u"abc", u'/'), u"");
  EXPECT_EQ(LastPart(u"a/b/c", u'/'), u"c");
  EXPECT_EQ(SplitStr(u"a,,b,", u','), (std::vector<String>{u"a", u"", u"b", u""}));
  EXPECT_EQ(SplitStr(u"", u','), std::vector<String>{u""});
}

TEST(PosNoCase, ComparesLowBytesAndHeedsCase) {
  EXPECT_EQ(PosNoCase(u"b", u"abab", 3), 4);
  EXPECT_EQ(PosNoCase(u"B", u"abab"), 0);
  EXPECT_EQ(PosNoCase(u"\x0361", u"xxa"), 3);  // the low byte of 'a'
  EXPECT_EQ(PosNoCase(u"a", u"a", 0), 0);
  EXPECT_EQ(PosNoCase(u"", u"abc", 9), 9);
  EXPECT_EQ(PosNoCase(u"a", u"abc", 9), 0);
}

TEST(RemoveCR, MakesOneBlankOfARun) {
  EXPECT_EQ(RemoveCR(u"a\r\n\tb"), u"a b");
  EXPECT_EQ(RemoveCR(StringView(u"\0\x01", 2)), StringView(u"\0 ", 2));
}

TEST(FullFileName, IsCutAtTheFirstPoint) {
  const String folder = String(u"dir.x") + platform::PathSeparator();
  EXPECT_EQ(fullFileNameWithoutExtension(folder + u"a.b.txt"), folder + u"a");
  EXPECT_EQ(fullFileNameWithoutExtension(u"plain"), u"plain");
}

TEST(ArrayToCommaStr, WritesDecimals) {
  const std::int32_t wide[] = {1, -2, std::numeric_limits<std::int32_t>::min()};
  const std::int16_t narrow[] = {-32768, 3};
  EXPECT_EQ(ArrayToCommaStr(wide), u"1,-2,-2147483648");
  EXPECT_EQ(ArrayToCommaStr(narrow), u"-32768,3");
  EXPECT_EQ(ArrayToCommaStr(std::span<const std::int32_t>()), u"");
}

TEST(NetFormat, CountsTheClosingBraceAsADigit) {
  EXPECT_EQ(NetFormat(u"a{0}b", {u"X"}), u"ab");
  EXPECT_EQ(NetFormat(u"a{0b", {u"X"}), u"a");
  EXPECT_EQ(NetFormat(u"a{ }b", {u"X"}), u"ab");
  std::vector<StringView> args(88, u"-");
  args[77] = u"X";
  args[87] = u"Y";
  EXPECT_EQ(NetFormat(u"{0}{1}", args), u"XY");
}

TEST(SafeDiv, GivesZeroForZeroDivisors) {
  EXPECT_EQ(SafeDiv(7, 0), 0);
  EXPECT_EQ(SafeDiv(-7, 2), -3);
  EXPECT_EQ(SafeDiv(std::numeric_limits<std::int32_t>::min(), -1),
            std::numeric_limits<std::int32_t>::min());
  EXPECT_EQ(SafeDiv(1.0, 0.0), 0);
}

}  // namespace
}  // namespace zentavo
