#include "zentavo/foundation/str_builder.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <string>
#include <utility>

#include "support/temporary_folder.h"
#include "zentavo/foundation/helper_files.h"

namespace zentavo {
namespace {

TEST(TStrBuilder, GrowsByAQuarterOrTheStep) {
  TStrBuilder builder(u"ab", 10);
  EXPECT_EQ(builder.Capacity(), 2);
  builder.Add(u'c');
  EXPECT_EQ(builder.Capacity(), 13);
  TStrBuilder large(String(100, u'x'), 10);
  large.Add(u"y");
  EXPECT_EQ(large.Capacity(), 126);
  EXPECT_EQ(TStrBuilder().AddInteger(-12345678901).AddInteger(0).GetData(), u"-123456789010");
  for (std::int64_t power = 1;; power *= 10) {
    for (const std::int64_t value : {power - 1, power, -power, power + 7}) {
      EXPECT_EQ(ToUtf8(TStrBuilder().AddInteger(value).View()), std::to_string(value));
    }
    if (power > std::numeric_limits<std::int64_t>::max() / 10) break;
  }
  EXPECT_EQ(TStrBuilder().AddInteger(std::numeric_limits<std::int64_t>::min()).View(),
            u"-9223372036854775808");
}

TEST(TStrBuilder, AppendsInEveryForm) {
  TStrBuilder builder;
  builder.LineAdd(u"").LineAdd(u"x").LineAdd(u"").LineAdd(u"y");
  EXPECT_EQ(builder.GetData(), u"x\r\ny");
  builder.SetValue(u"");
  builder.AddLine(u"a").AddPart(u"bcde", 2, 2).AddPart(u"z", 1, 0).AddChars(u"qq", -1);
  builder.AddFmt(u"%d%%", {5}).AddLineFmt(u"[%s]", {u"t"});
  EXPECT_EQ(builder.GetData(), u"a\r\ncd5%[t]\r\n");
}

TEST(TStrBuilder, ReplacesStrictlyInsideTheContent) {
  TStrBuilder builder(u"abcde", 4);
  builder.Replace(5, 1, u"Z");
  builder.Insert(6, u"Z");
  builder.Replace(0, 1, u"Z");
  EXPECT_EQ(builder.GetData(), u"abcde");
  builder.Replace(2, 1, u"XY");
  EXPECT_EQ(builder.GetData(), u"aXYcde");
  EXPECT_EQ(builder.Capacity(), 15);  // room for twice the content was asked for
  builder.Insert(6, u"--");
  EXPECT_EQ(builder.GetData(), u"aXYcd--e");
  builder.Replace(1, 7, u"");
  EXPECT_EQ(builder.GetData(), u"e");
}

TEST(TStrBuilder, ReadsAndChangesSingleUnits) {
  TStrBuilder builder(u"abc");
  builder.Put(2, u'X');
  builder.Put(4, u'Y');
  builder.SetLast(u'Z');
  EXPECT_EQ(builder.GetData(), u"aXZ");
  EXPECT_EQ(builder.Get(4), u'\0');
  builder.DeleteLast(10);
  EXPECT_EQ(builder.Size(), 0);
  EXPECT_EQ(builder.Capacity(), 3);
  builder.SetLast(u'Q');
  EXPECT_EQ(builder.GetData(), u"");
}

TEST(TStrBuilder, MovesItsContent) {
  TStrBuilder from(u"abc");
  TStrBuilder to(std::move(from));
  EXPECT_EQ(from.GetData(), u"");  // NOLINT(bugprone-use-after-move): the promise is tested
  from.Add(u"x");
  from = std::move(to);
  EXPECT_EQ(from.GetData(), u"abc");
}

TEST(TStrBuilder, EqualsAPlainStringUnderRandomAppends) {
  std::mt19937 random(7);
  TStrBuilder builder(u"", 1);
  String plain;
  for (int step = 0; step < 5000; ++step) {
    const String piece(random() % 9, static_cast<char16_t>(u'a' + random() % 26));
    builder.Add(piece);
    plain += piece;
    if (random() % 50 == 0) {
      const auto cut = static_cast<std::int32_t>(random() % 40);
      builder.DeleteLast(cut);
      plain.resize(plain.size() - std::min(plain.size(), static_cast<std::size_t>(cut)));
    }
  }
  EXPECT_EQ(builder.GetData(), plain);
}

TEST(TStrBuilder, WritesOneByteAUnit) {
  const testing::TemporaryFolder folder;
  const String name = folder / u"text";
  TStrBuilder(u"aΩb").WriteToFile(name);
  EXPECT_EQ(ReadAllTextAnsi(name).size(), 3u);  // cut where characters need more bytes
  TStrBuilder().WriteToFile(name);
  EXPECT_EQ(ReadAllTextAnsi(name), "");
}

}  // namespace
}  // namespace zentavo
