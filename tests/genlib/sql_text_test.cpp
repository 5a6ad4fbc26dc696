#include "zentavo/genlib/sql_text.h"

#include <gtest/gtest.h>

#include <numeric>
#include <random>
#include <vector>

#include "zentavo/framework/number_text.h"

namespace zentavo {
namespace {

std::vector<std::int32_t> FirstIntegers(std::size_t count) {
  std::vector<std::int32_t> values(count);
  std::iota(values.begin(), values.end(), 1);
  return values;
}

// The rule, one step at a time.
String PlainInQuery(const String& field, const std::vector<std::int32_t>& values) {
  String out = field + u" IN (";
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (i > 0 && i % 1000 == 0) {
      out.pop_back();
      out += u") OR " + field + u" IN (";
    }
    out += IntToStr(values[i]) + u",";
  }
  if (out.back() == u',') {
    out.pop_back();
    out += u")";
  }
  return String(1, u'(') + out + u")";
}

TEST(MakeInQuery, ListsIntegersAndLeavesAnEmptyListOpen) {
  EXPECT_EQ(MakeInQuery(u"F", std::vector<std::int32_t>{INT32_MIN, INT32_MAX, 0, -10, 99, 100}),
            u"(F IN (-2147483648,2147483647,0,-10,99,100))");
  EXPECT_EQ(MakeInQuery(u"F", std::span<const std::int32_t>()), u"(F IN ()");
}

TEST(MakeInQuery, EqualsThePlainRule) {
  std::mt19937 random(5);  // NOLINT(bugprone-random-generator-seed): the same cases each time
  for (const std::size_t count : {1U, 999U, 1000U, 1001U, 2000U, 2001U, 2500U}) {
    std::vector<std::int32_t> values = FirstIntegers(count);
    for (std::int32_t& value : values) {
      value = static_cast<std::int32_t>(random()) >> (random() % 31);
    }
    EXPECT_EQ(MakeInQuery(u"Κωδικός", values), PlainInQuery(u"Κωδικός", values)) << count;
  }
}

String Values(std::size_t count) {
  String text = u"1";
  for (std::size_t i = 1; i < count; ++i) text += u",1";
  return text;
}

TEST(MakeInQuery, CopiesTextAndGroupsByCommas) {
  EXPECT_EQ(MakeInQuery(u"F", u"'a', 'b'"), u"(F IN ('a', 'b'))");
  EXPECT_EQ(MakeInQuery(u"F", u""), u"(F IN ())");
  EXPECT_EQ(MakeInQuery(u"F", Values(1000)), u"(F IN (" + Values(1000) + u"))");
  EXPECT_EQ(MakeInQuery(u"F", Values(1001)), u"(F IN (" + Values(1000) + u") OR F IN (1))");
  EXPECT_EQ(MakeInQuery(u"F", Values(1000) + u","), u"(F IN (" + Values(1000) + u") OR F IN ())");
}

TEST(FormatSQLInValues, DropsRepeatedValuesAndGroups) {
  EXPECT_EQ(FormatSQLInValues(u"ID", u"3,1,3,2"), u"((ID IN (3, 1, 2)))");
  EXPECT_EQ(FormatSQLInValues(u"ID", u" a ,\"b\",a"), u"((ID IN (a, b)))");
  EXPECT_EQ(FormatSQLInValues(u"ID", u""), u"()");
  String values;
  for (const std::int32_t value : FirstIntegers(1001)) values += IntToStr(value) + u",";
  const String text = FormatSQLInValues(u"ID", values);
  EXPECT_TRUE(text.ends_with(u", 999, 1000)) OR (ID IN (1001)))")) << ToUtf8(text.substr(5000));
}

TEST(AddFldsInSelect, PutsMissingFieldsInFront) {
  constexpr StringView kSelect = u"SELECT A.X,A.Y FROM T A";
  EXPECT_EQ(AddFldsInSelect(u"Y;Z;W", u"A", kSelect), u"SELECT A.W,A.Z,A.X,A.Y FROM T A");
  EXPECT_EQ(AddFldsInSelect(u"y; [a;b] ;", u"A", kSelect), u"SELECT A.[a;b],A.y,A.X,A.Y FROM T A");
  EXPECT_EQ(AddFldsInSelect(u"X", u"A", kSelect), kSelect);
  EXPECT_EQ(AddFldsInSelect(u"", u"A", kSelect), kSelect);
  EXPECT_EQ(AddFldsInSelect(u"N", u"A", u"SELECT 1 FROM T WHERE T.N > 2"),
            u"SELECT 1 FROM T WHERE T.N > 2");
  EXPECT_EQ(AddFldsInSelect(u"N", u"A", u"SEL"), u"SELA.N,");
}

TEST(CheckParts, CompletesByTheNumberOfParts) {
  struct {
    String name;
    const char16_t *full, *expected;
  } rows[] = {
      {u"CODE", u"MTRL.CODE", u"MTRL.CODE"},
      {u"X.CODE", u"MTRL.CODE", u"X.CODE"},
      {u"C", u"A.B.C", u"A.B.C"},
      {u"B.C", u"A.B.D", u"A.B.C"},
      {u"", u".", u"."},
      {u"A.B.C", u"D", u"A.B.C"},
  };
  for (auto& row : rows) {
    const String before = row.name;
    EXPECT_EQ(CheckParts(row.name, row.full, u'.'), before != row.expected);
    EXPECT_EQ(row.name, row.expected);
  }
}

TEST(ExtractQuoteStings, SplitsOutsideQuotes) {
  struct Row {
    const char16_t* text;
    char16_t open, close;
    const char16_t* expected;
  };
  for (const Row& row :
       {Row{u"a; b ;c", u'[', u']', u"a|b|c|"}, Row{u"a;;", u'[', u']', u"a||"},
        Row{u"[a;[b];c];d", u'[', u']', u"[a;[b];c]|d|"},
        Row{u"a];b;[c;d", u'[', u']', u"a];b;[c|d|"}, Row{u"'a;b';c'", u'\'', u'\'', u"'a;b'|c'|"},
        Row{u"[a;b", u'[', u']', u"[a;b|"}, Row{u"", u'[', u']', u""},
        Row{u" ", u'[', u']', u"|"}}) {
    TStringList list;
    ExtractQuoteStings(list, row.text, u';', row.open, row.close);
    String pieces;
    for (std::int32_t i = 0; i < list.Count(); ++i) (pieces += list[i]) += u'|';
    EXPECT_EQ(pieces, row.expected) << ToUtf8(row.text);
  }
}

TEST(ClearSameStrings, KeepsTheFirstOfEach) {
  EXPECT_EQ(ClearSameStrings(u"3, 1,3 ,2,1", u','), u"3,1,2");
  EXPECT_EQ(ClearSameStrings(u"a,,b,,A,", u','), u"a,,b,A");
  EXPECT_EQ(ClearSameStrings(u"", u','), u"");
  EXPECT_EQ(ClearSameStrings(u"a", u','), u"a");
}

// The rule by searching the whole text each time.
String PlainClear(const String& text) {
  TStringList pieces;
  ExtractQuoteStings(pieces, text, u',', u'[', u']');
  String met = u",";
  for (std::int32_t i = 0; i < pieces.Count(); ++i) {
    if (met.find(u',' + pieces[i] + u',') == String::npos) met += pieces[i] + u",";
  }
  return text.empty() ? text : met.substr(1, std::max<std::size_t>(met.size(), 2) - 2);
}

TEST(ClearSameStrings, EqualsThePlainRule) {
  std::mt19937 random(11);  // NOLINT(bugprone-random-generator-seed): the same cases each time
  for (int run = 0; run < 3000; ++run) {
    String text;
    for (std::size_t length = random() % 24; text.size() < length;) {
      text += u"ab[], "[random() % 6];
    }
    EXPECT_EQ(ClearSameStrings(text, u','), PlainClear(text)) << ToUtf8(text);
  }
}

}  // namespace
}  // namespace zentavo
