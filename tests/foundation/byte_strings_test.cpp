#include "zentavo/foundation/byte_strings.h"

#include <gtest/gtest.h>

#include <functional>
#include <utility>
#include <vector>

#include "tests/support/error_of.h"

namespace zentavo {
namespace {

std::vector<AnsiString> Lines(const TByteStrings& list) {
  std::vector<AnsiString> lines;
  for (std::int32_t i = 0; i < list.Count(); ++i) lines.push_back(list[i]);
  return lines;
}

TEST(TByteStrings, CapacityGrowsByFourSixteenThenAQuarter) {
  TByteStrings list;
  std::vector<std::int32_t> capacities = {list.Capacity()};
  while (list.Count() < 80) {
    list.Add("x");
    if (list.Capacity() != capacities.back()) capacities.push_back(list.Capacity());
  }
  EXPECT_EQ(capacities, (std::vector<std::int32_t>{0, 4, 8, 12, 28, 44, 60, 76, 95}));
  list.Clear();
  EXPECT_EQ(list.Count(), 0);
  EXPECT_EQ(list.Capacity(), 95);
}

TEST(TByteStrings, TextBreaksAtEachKindOfLineEnd) {
  struct Row {
    AnsiString text;
    std::vector<AnsiString> lines;
  };
  for (const Row& row : {Row{"", {}}, Row{"a\r\nb\rc\n", {"a", "b", "c"}}, Row{"\r\n", {""}},
                         Row{"a\r\r\n\nb", {"a", "", "", "b"}},
                         Row{"\xCE\xB1\r\nbad \xFF", {"\xCE\xB1", "bad \xEF\xBF\xBD"}}}) {
    TByteStrings list;
    list.SetText(row.text);
#ifdef _WIN32  // the system code page decides about bytes beyond ASCII
    if (row.text.find('\xFF') != AnsiString::npos) continue;
#endif
    EXPECT_EQ(Lines(list), row.lines) << row.text;
    AnsiString text;
    for (const AnsiString& line : row.lines) text += line + "\r\n";
    EXPECT_EQ(list.GetText(), text);
  }
}

TEST(TByteStrings, OwnTextMayBeSetAgain) {
  TByteStrings list;
  list.Add("one\ntwo");
  list.SetText(list[0]);
  EXPECT_EQ(Lines(list), (std::vector<AnsiString>{"one", "two"}));
  list.Insert(0, list[1]);
  EXPECT_EQ(Lines(list), (std::vector<AnsiString>{"two", "one", "two"}));
}

TEST(TByteStrings, NamesIgnoreAsciiCaseAndNeedTheEqualSign) {
  TByteStrings list;
  list.SetText("key\nkeyx=0\nKEY=1\nkey=2\n\xCE\xB1=3\n=4\n");
  EXPECT_EQ(list.IndexOfName("key"), 2);
  EXPECT_EQ(list.GetValue("Key"), "1");
  EXPECT_EQ(list.IndexOfName("ke"), -1);
  EXPECT_EQ(list.GetValue("ke"), "");
  EXPECT_EQ(list.IndexOfName("\xCE\x91"), -1);
  EXPECT_EQ(list.GetValue(""), "4");
  list.SetValue("key", "");
  list.SetValue("new", "5");
  EXPECT_EQ(list[2], "key=");
  EXPECT_EQ(list[list.Count() - 1], "new=5");
}

TEST(TByteStrings, InsertAndDeleteShiftTheTail) {
  TByteStrings list;
  list.SetText("a\nb\nc\n");
  list.Insert(1, "x");
  list.Insert(4, "end");
  list.Delete(0);
  EXPECT_EQ(Lines(list), (std::vector<AnsiString>{"x", "b", "c", "end"}));
  TByteStrings copy;
  copy.SetText("1\n2\n3\n4\n5\n");
  copy.Assign(list);
  EXPECT_EQ(Lines(copy), Lines(list));
}

TEST(TByteStrings, OutOfBoundsIsRefusedByNumber) {
  TByteStrings list;
  list.SetText("a\nb\n");
  const std::pair<std::function<void()>, std::string> rows[] = {
      {[&] { list.Insert(3, "x"); }, "List index out of bounds (3)"},
      {[&] { list.Insert(-1, "x"); }, "List index out of bounds (-1)"},
      {[&] { list.Delete(2); }, "List index out of bounds (2)"},
      {[&] { list.SetCapacity(1); }, "List capacity out of bounds (1)"}};
  for (const auto& [act, error] : rows) EXPECT_EQ(testing::ErrorOf(act), error);
  EXPECT_EQ(list.GetText(), "a\r\nb\r\n");
}

}  // namespace
}  // namespace zentavo
