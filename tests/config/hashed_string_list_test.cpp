#include "zentavo/config/hashed_string_list.h"

#include <gtest/gtest.h>

#include <random>
#include <stdexcept>
#include <vector>

namespace zentavo {
namespace {

TEST(TXHashedStringList, FindsTheLowestIndexWithoutRegardToCase) {
  TXHashedStringList list;
  for (const StringView line : {u"plain", u"a=1", u"A=1", u"KEY=x=y", u"=empty"}) list.Add(line);
  EXPECT_EQ(list.IndexOf(u"A=1"), 1);
  EXPECT_EQ(list.IndexOfName(u"A"), 1);
  EXPECT_EQ(list.IndexOfName(u"key"), 3);
  EXPECT_EQ(list.IndexOfName(u"key=x"), -1);
  EXPECT_EQ(list.IndexOfName(u"plain"), -1);
  EXPECT_EQ(list.IndexOfName(u""), 4);
  EXPECT_EQ(list.Values(u"Key"), u"x=y");
  list.SetCaseSensitive(true);
  EXPECT_EQ(list.IndexOf(u"A=1"), 2);
  EXPECT_EQ(list.IndexOfName(u"key"), -1);
  list.Delete(0);
  EXPECT_EQ(list.IndexOf(u"A=1"), 1);
  list.SetNameValueSeparator(u'=' + 1);
  EXPECT_EQ(list.IndexOfName(u"A"), -1);
}

// Callers rely on a handler being served from the table as it was before the change.
TEST(TXHashedStringList, HandlersLookUpInTheStateBefore) {
  TXHashedStringList list;
  list.Add(u"a=1");
  list.Add(u"b=2");
  std::vector<std::int32_t> seen;
  list.SetOnChange([&](TStringList& sender) {
    seen = {sender.IndexOf(u"b=2"), sender.IndexOfName(u"b"), sender.IndexOfName(u"c")};
  });
  list.IndexOf(u"b=2");
  list.IndexOfName(u"b");
  list.Delete(0);
  EXPECT_EQ(seen, (std::vector<std::int32_t>{1, 1, -1}));
  list.Add(u"c=3");  // no look-up since, so there is no older table
  EXPECT_EQ(seen, (std::vector<std::int32_t>{0, 0, 1}));
  EXPECT_EQ(list.IndexOfName(u"c"), 1);
}

TEST(TXHashedStringList, SurvivesAHandlerThatRaises) {
  TXHashedStringList list;
  list.Add(u"a=1");
  list.IndexOfName(u"a");
  list.SetOnChange([](TStringList&) { throw std::runtime_error("refused"); });
  EXPECT_THROW(list.Insert(0, u"b=2"), std::runtime_error);
  EXPECT_EQ(list.IndexOfName(u"a"), 1);
}

String RandomLine(std::mt19937& random) {
  String line;
  for (auto left = random() % 3; left > 0; --left)
    line += static_cast<char16_t>(u"aAbB\u03B1\u0391"[random() % 6]);
  if (random() % 3 == 0) line.append(u"a key of several words");
  if (random() % 4 != 0) line.append(u"=").append(1, static_cast<char16_t>(u'0' + random() % 3));
  return line;
}

void ChangeSomewhere(TStringList& list, std::mt19937& random, unsigned change) {
  const String line = RandomLine(random);
  const auto index = static_cast<std::int32_t>(random() % static_cast<unsigned>(list.Count() + 1));
  if (change < 4 || index == list.Count()) {
    list.Add(line);
  } else if (change < 7) {
    list.SetString(index, line);
  } else if (change == 7) {
    list.Insert(index, line);
  } else if (change == 8) {
    list.Delete(index);
  } else if (change == 9) {
    list.SetCaseSensitive(!list.CaseSensitive());
  } else if (change == 10) {
    list.SetCapacity(list.Count() + 1);
  } else {
    list.SetNameValueSeparator(list.NameValueSeparator() == u'=' ? u'b' : u'=');
  }
}

TEST(TXHashedStringList, AnswersAsAPlainListDoes) {
  constexpr unsigned kSeed = 3;
  std::mt19937 random(kSeed);
  TXHashedStringList hashed;
  TStringList plain;
  for (int step = 0; step < 20000; ++step) {
    const auto change = static_cast<unsigned>(random() % 12);
    std::mt19937 same = random;
    ChangeSomewhere(hashed, random, change);
    ChangeSomewhere(plain, same, change);
    if (plain.Count() > 40) plain.Clear(), hashed.Clear();
    if (random() % 3 == 0) continue;
    const String line = RandomLine(random);
    const StringView name = StringView(line).substr(0, line.find(plain.NameValueSeparator()));
    const std::int32_t named = plain.IndexOfName(name);
    StringView found;
    ASSERT_EQ(hashed.IndexOf(line), plain.IndexOf(line)) << "seed " << kSeed << " step " << step;
    ASSERT_EQ(hashed.IndexOfName(name), named) << "step " << step;
    ASSERT_EQ(hashed.FindLine(name, found), named >= 0) << "step " << step;
    ASSERT_EQ(found, named < 0 ? StringView() : StringView(plain[named])) << "step " << step;
  }
}

}  // namespace
}  // namespace zentavo
