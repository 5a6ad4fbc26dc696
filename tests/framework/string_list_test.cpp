#include "zentavo/framework/string_list.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>

#include "tests/support/error_of.h"
#include "zentavo/framework/stream.h"

namespace zentavo {
namespace {

using testing::ErrorOf;
using Strings = std::vector<String>;

Strings StringsOf(const TStringList& list) {
  Strings strings;
  for (std::int32_t i = 0; i < list.Count(); ++i) strings.push_back(list[i]);
  return strings;
}

void Fill(TStringList& list, const Strings& strings) {
  for (const String& text : strings) list.Add(text);
}

TEST(TStringList, SortedListPutsEntriesInOrderAndIgnoresDuplicates) {
  TStringList list;
  list.SetSorted(true);
  list.AddValue(u"beta", 1);
  EXPECT_EQ(list.Add(u"Alpha"), 0);
  EXPECT_EQ(list.AddValue(u"BETA", 3), 1);
  EXPECT_EQ(StringsOf(list), (Strings{u"Alpha", u"beta"}));
  EXPECT_EQ(list.Value(1), 1u);
  std::int32_t index = -1;
  EXPECT_FALSE(list.Find(u"azure", index));
  EXPECT_EQ(index, 1);
}

TEST(TStringList, AcceptedDuplicatesKeepTheirOrder) {
  TStringList list;
  list.SetDuplicates(TDuplicates::dupAccept);
  list.SetSorted(true);
  Fill(list, {u"b", u"x", u"B"});
  EXPECT_EQ(list.Add(u"X"), 3);
  EXPECT_EQ(StringsOf(list), (Strings{u"b", u"B", u"x", u"X"}));
  EXPECT_EQ(list.IndexOf(u"X"), 2);
  list.SetCaseSensitive(true);
  EXPECT_EQ(StringsOf(list), (Strings{u"B", u"X", u"b", u"x"}));
}

TEST(TStringList, ErrorsLeaveTheListAsItWas) {
  TStringList list;
  TStringList more;
  Fill(list, {u"a", u"b"});
  Fill(more, {u"c", u"B"});
  const auto expect_error = [](const std::string& error,
                               const std::vector<std::function<void()>>& acts) {
    for (const auto& act : acts) EXPECT_EQ(ErrorOf<EStringListError>(act), error);
  };
  expect_error("List index out of bounds (2)", {[&] { list.Strings(2); }, [&] { list.Delete(2); }});
  expect_error("List index out of bounds (3)", {[&] { list.Insert(3, u"x"); }});
  expect_error("List capacity out of bounds (1)", {[&] { list.SetCapacity(1); }});
  expect_error("String list does not own objects", {[&] { list.AddObject(u"x", nullptr); }});
  list.SetDuplicates(TDuplicates::dupError);
  list.SetSorted(true);
  expect_error(
      "String list does not allow duplicates",
      {[&] { list.Add(u"A"); }, [&] { list.SetText(u"x\nX"); }, [&] { list.AddStrings(more); }});
  expect_error(
      "Operation not allowed on sorted list",
      {[&] { list.Insert(0, u"x"); }, [&] { list.SetString(0, u"x"); },
       [&] { list.Exchange(0, 1); }, [&] { list.Move(0, 1); }, [&] { list.CustomSort({}); }});
  EXPECT_EQ(StringsOf(list), (Strings{u"a", u"b"}));
}

TEST(TStringList, InsertMoveExchangeDelete) {
  TStringList list;
  Fill(list, {u"a", u"b", u"c", u"d"});
  list.Insert(4, u"e");
  list.Move(0, 3);
  EXPECT_EQ(StringsOf(list), (Strings{u"b", u"c", u"d", u"a", u"e"}));
  list.Move(4, 1);
  EXPECT_EQ(StringsOf(list), (Strings{u"b", u"e", u"c", u"d", u"a"}));
  list.Exchange(0, 4);
  list.Delete(1);
  EXPECT_EQ(StringsOf(list), (Strings{u"a", u"c", u"d", u"b"}));
}

TEST(TStringList, TakesItsOwnTexts) {
  TStringList list;
  list.SetCapacity(1);
  list.Add(u"a text too long to be kept inside a string object");
  const String text = list[0];
  list.Add(list[0]);
  list.Insert(0, list[0]);
  list.SetString(1, StringView(list[1]).substr(2));
  EXPECT_EQ(StringsOf(list), (Strings{text, text.substr(2), text}));
  list.AddStrings(list);
  list.Assign(list);
  EXPECT_EQ(list.Count(), 6);
  list.SetText(list[0]);
  EXPECT_EQ(StringsOf(list), (Strings{text}));
}

class Probe : public TObject {
 public:
  explicit Probe(int& destroyed) : destroyed_(destroyed) {}
  ~Probe() override { ++destroyed_; }

 private:
  int& destroyed_;
};

TEST(TStringList, DestroysTheObjectsItOwnsOnce) {
  int destroyed = 0;
  const auto probe = [&] { return std::make_unique<Probe>(destroyed); };
  {
    TStringList list;
    list.SetOwnsObjects(true);
    list.SetSorted(true);
    list.AddObject(u"a", probe());
    const TObject* first = list.Objects(0);
    list.AddObject(u"A", probe());
    EXPECT_EQ(destroyed, 1) << "the object of an ignored entry";
    EXPECT_EQ(list.Objects(0), first);
    list.SetObject(0, probe());
    EXPECT_EQ(destroyed, 2) << "a replaced object";
    list.SetValue(0, list.Value(0));
    EXPECT_EQ(destroyed, 2) << "replaced by itself";
    TStringList guest;
    guest.Assign(list);
    EXPECT_FALSE(guest.OwnsObjects());
    list.AddStrings(guest);
    list.Delete(0);
    EXPECT_EQ(destroyed, 3);
    list.AddObject(u"b", probe());
    list.Clear();
    EXPECT_EQ(destroyed, 4);
    list.AddObject(u"c", probe());
    list.SetText(u"none");
    EXPECT_EQ(destroyed, 5);
    list.AddObject(u"d", probe());
    list.SetDuplicates(TDuplicates::dupError);
    EXPECT_THROW(list.AddObject(u"D", probe()), EStringListError);
    EXPECT_EQ(destroyed, 6);
    list.SetOnChange([](TStringList&) { Abort(); });
    EXPECT_THROW(list.AddObject(u"e", probe()), EAbort);
    EXPECT_EQ(destroyed, 6) << "added before the handler raised";
  }
  EXPECT_EQ(destroyed, 8);
}

TEST(TStringList, NamesAndValues) {
  TStringList list;
  Fill(list, {u"Name=a=b", u"lone", u"=v", u"Empty="});
  EXPECT_EQ(list.Values(u"NAME"), u"a=b");
  EXPECT_EQ(list.IndexOfName(u"lone"), -1);
  EXPECT_EQ(list.IndexOfName(u""), 2);
  EXPECT_EQ(list.Names(1), u"");
  list.SetValueOf(u"name", u"x");
  list.SetValueOf(u"new", u"y");
  list.SetValueOf(u"", u"");
  list.SetValueOf(u"absent", u"");
  list.SetValueFromIndex(2, u"full");
  EXPECT_EQ(StringsOf(list), (Strings{u"name=x", u"lone", u"Empty=full", u"new=y"}));
}

TEST(TStringList, TextBreaksAtEveryKindOfLineEnd) {
  const std::vector<std::pair<String, Strings>> rows = {
      {u"", {}},
      {u"\n", {u""}},
      {u"a\r\nb\rc\nd", {u"a", u"b", u"c", u"d"}},
      {u"a\n\r\n\n", {u"a", u"", u""}},
      {String(u"a\0b", 3), {String(u"a\0b", 3)}},
  };
  for (const auto& [text, strings] : rows) {
    TStringList list;
    list.SetText(text);
    EXPECT_EQ(StringsOf(list), strings);
    list.SetLineBreak(u"\r\n");
    TStringList again;
    again.SetText(list.Text());
    EXPECT_TRUE(again.Equals(list));
  }
}

struct DelimitedRow {
  String text;
  Strings strict, loose;
};

TEST(TStringList, DelimitedTextIsReadAndWrittenBack) {
  for (const DelimitedRow& row :
       {DelimitedRow{u"", {}, {}}, DelimitedRow{u"a,", {u"a", u""}, {u"a", u""}},
        DelimitedRow{u",a", {u"", u"a"}, {u"", u"a"}}, DelimitedRow{u"a b", {u"a b"}, {u"a", u"b"}},
        DelimitedRow{u"a, ,b", {u"a", u" ", u"b"}, {u"a", u"", u"b"}},
        DelimitedRow{u"a\tb\nc", {u"a\tb\nc"}, {u"a", u"b", u"c"}},
        DelimitedRow{u"\"a b\",\"c,d\"", {u"a b", u"c,d"}, {u"a b", u"c,d"}},
        DelimitedRow{u"\"say \"\"hi\"\"\"", {u"say \"hi\""}, {u"say \"hi\""}},
        DelimitedRow{u"\"open,", {u"open,"}, {u"open,"}},
        DelimitedRow{u"\"a\"b,c", {u"ab", u"c"}, {u"a", u"b", u"c"}},
        DelimitedRow{u"a\"b\"", {u"a\"b\""}, {u"a\"b\""}}}) {
    for (const bool strict : {false, true}) {
      TStringList list;
      list.SetStrictDelimiter(strict);
      list.SetDelimitedText(row.text);
      EXPECT_EQ(StringsOf(list), strict ? row.strict : row.loose);
      TStringList again;
      again.SetStrictDelimiter(strict);
      again.SetDelimitedText(list.DelimitedText());
      EXPECT_TRUE(again.Equals(list));
    }
  }
  TStringList blanks;
  blanks.SetDelimiter(u' ');
  Fill(blanks, {u"a", u"", u"b c"});
  EXPECT_EQ(blanks.DelimitedText(), u"a \"\" \"b c\"");
  EXPECT_EQ(blanks.CommaText(), u"a,,\"b c\"");
}

TEST(TStringList, StreamsKeepTheEncodingTheyWereReadWith) {
  const std::string_view rows[] = {
      {"\xEF\xBB\xBF\xCE\xB1\n", 6},
      {"\xFF\xFE\xB1\x03\n\0", 6},
      {"\xFE\xFF\x03\xB1\0\n", 6},
  };
  for (const std::string_view bytes : rows) {
    TMemoryStream source;
    source.WriteBuffer("skip", 4);
    source.WriteBuffer(bytes.data(), static_cast<std::int64_t>(bytes.size()));
    source.SetPosition(4);
    TStringList list;
    list.SetLineBreak(u"\n");
    list.LoadFromStream(source);
    EXPECT_EQ(StringsOf(list), (Strings{u"\u03B1"}));
    TMemoryStream target;
    list.SaveToStream(target);
    EXPECT_EQ(bytes, std::string_view(reinterpret_cast<const char*>(target.Memory()),
                                      static_cast<std::size_t>(target.Size())));
  }
}

// Whatever the list is told, its descendants hear of each change, its handlers of each update.
TEST(TStringList, EveryChangeIsAnnounced) {
  class Counter : public TStringList {
   public:
    int changing = 0, changed = 0;

   protected:
    void Changing() override { ++changing, TStringList::Changing(); }
    void Changed() override { ++changed, TStringList::Changed(); }
  };
  Counter list;
  int before = 0;
  int after = 0;
  list.SetOnChanging([&](TStringList&) { ++before; });
  list.SetOnChange([&](TStringList&) { ++after; });
  TStringList other;
  other.Add(u"o");
  const std::vector<std::function<void()>> steps = {
      [&] { list.Add(u"b"); },
      [&] { list.Insert(0, u"c"); },
      [&] { list.SetString(0, u"d"); },
      [&] { list.SetValue(0, 7); },
      [&] { list.Exchange(0, 1); },
      [&] { list.Move(0, 1); },
      [&] { list.Sort(); },
      [&] { list.AddStrings(other); },
      [&] { list.Delete(0); },
      [&] { list.SetSorted(true); },
      [&] { list.Clear(); },
      [&] { list.Assign(other); },
      [&] { list.SetText(u"z\ny"); },
      [&] { list.SetCommaText(u"2,1"); },
      [&] { list.CustomSort([](const TStringList&, int a, int b) { return b - a; }); }};
  for (std::size_t i = 0; i < steps.size(); ++i) {
    steps[i]();
    const int count = static_cast<int>(i) + 1;
    for (const int heard : {list.changing, list.changed, before, after}) EXPECT_EQ(heard, count);
  }
  EXPECT_EQ(list.CommaText(), u"1,2");
  const int announced = list.changed;
  list.BeginUpdate();
  list.BeginUpdate();
  list.Add(u"x");
  list.EndUpdate();
  EXPECT_EQ(list.changed, announced + 1);
  EXPECT_EQ(after, announced);
  list.EndUpdate();
  EXPECT_EQ(after, announced + 1);
  EXPECT_EQ(before, announced + 1);
}

TEST(TStringList, SortingAndSearchingAgreeWithAPlainModel) {
  constexpr unsigned kSeed = 7;
  SCOPED_TRACE(kSeed);
  std::mt19937 random(kSeed);
  const StringView units(u"aAbB\u03B1\u0391\0_z", 9);
  for (int round = 0; round < 300; ++round) {
    const bool case_sensitive = round % 2 == 0;
    const auto compare = case_sensitive ? CompareStr : CompareText;
    TStringList list;
    list.SetCaseSensitive(case_sensitive);
    Strings model;
    for (auto i = random() % 40; i > 0; --i) {
      String text(random() % 7, u' ');
      for (char16_t& unit : text) unit = units[random() % units.size()];
      list.Add(text);
      model.push_back(text);
    }
    std::stable_sort(model.begin(), model.end(),
                     [&](const String& a, const String& b) { return compare(a, b) < 0; });
    list.SetSorted(true);
    ASSERT_EQ(StringsOf(list), model);
    for (const String& text : model) {
      const auto equal = [&](const String& entry) { return compare(entry, text) == 0; };
      const auto first = std::find_if(model.begin(), model.end(), equal) - model.begin();
      ASSERT_EQ(list.IndexOf(text), first);
      list.SetSorted(false);
      ASSERT_EQ(list.IndexOf(text), first);
      list.SetSorted(true);
    }
    TStringList unique;
    unique.SetCaseSensitive(case_sensitive);
    unique.SetSorted(true);
    unique.AddStrings(list);
    unique.AddStrings(list);
    model.erase(std::unique(model.begin(), model.end(),
                            [&](const String& a, const String& b) { return compare(a, b) == 0; }),
                model.end());
    ASSERT_EQ(StringsOf(unique), model);
  }
}

}  // namespace
}  // namespace zentavo
