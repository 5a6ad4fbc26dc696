#include "zentavo/framework/memory_data_set.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "tests/support/error_of.h"

namespace zentavo {
namespace {

using testing::ErrorOf;

// A table of numbers; its records as text, the current one in brackets, with the state's flags.
class Numbers {
 public:
  explicit Numbers(int count) {
    data.Open();
    for (int i = 1; i <= count; ++i) Append(i);
    data.First();
  }
  void Append(int value) {
    data.Append();
    number.SetAsInteger(value);
    data.Post();
  }
  String Current() const {
    return number.AsString() + (data.Bof() ? u"b" : u"") + (data.Eof() ? u"e" : u"");
  }
  String All() {
    String all;
    for (data.First(); !data.Eof(); data.Next()) all += number.AsString() + u" ";
    return all;
  }

  TMemoryDataSet data{u"T"};
  TField& number = data.AddField(u"N", TFieldType::ftInteger);
};

// Plays `script` over the numbers 1 to `count`: '<' and '>' are prior and next, '[' and ']' first
// and last, 'i', 'a', 'e' and 'd' insert, append, edit and delete, 'p' and 'c' post and cancel, a
// digit is written. Gives the current record and, behind a colon, all of them.
String Play(int count, StringView script) {
  Numbers t(count);
  for (const char16_t step : script) {
    switch (step) {
      case u'<': t.data.Prior(); break;
      case u'>': t.data.Next(); break;
      case u'[': t.data.First(); break;
      case u']': t.data.Last(); break;
      case u'i': t.data.Insert(); break;
      case u'a': t.data.Append(); break;
      case u'e': t.data.Edit(); break;
      case u'd': t.data.Delete(); break;
      case u'p': t.data.Post(); break;
      case u'c': t.data.Cancel(); break;
      default: t.number.SetAsInteger(step - u'0');
    }
  }
  const String current = t.Current();
  return current + u": " + t.All();
}

TEST(TMemoryDataSet, MovesAndChanges) {
  struct Row {
    int count;
    const char16_t *script, *result;
  };
  for (const Row& row :
       {Row{3, u"", u"1b: 1 2 3 "}, Row{3, u"<", u"1b: 1 2 3 "}, Row{3, u">>", u"3: 1 2 3 "},
        Row{3, u">>>", u"3e: 1 2 3 "}, Row{3, u"]", u"3e: 1 2 3 "}, Row{3, u">[", u"1b: 1 2 3 "},
        // Deleting moves to the following record or the new last.
        Row{3, u">d", u"3: 1 3 "}, Row{3, u">dd", u"1: 1 "}, Row{3, u">ddd", u"be: "},
        // Inserting happens in front of the current record.
        Row{2, u">i9p", u"9: 1 9 2 "},
        // Cancelling gives up what was written; so does deleting what is being inserted.
        Row{2, u"e7c", u"1: 1 2 "}, Row{2, u"a8d", u"1: 1 2 "},
        // Moving posts records that were modified, and no others.
        Row{2, u"e7>", u"2: 7 2 "}, Row{2, u"a<", u"1b: 1 2 "}}) {
    EXPECT_EQ(Play(row.count, row.script), row.result) << ToUtf8(row.script);
  }
  Numbers t(3);
  EXPECT_EQ(t.data.MoveBy(2), 2);
  EXPECT_EQ(t.data.MoveBy(INT64_MIN), -2);
  EXPECT_EQ(t.Current(), u"1b");
  t.data.SetRecNo(2);
  EXPECT_EQ(t.Current(), u"2");
}

// Records are kept in pieces; a walk goes over their borders, and over what changes on the way.
TEST(TMemoryDataSet, WalksOverManyRecordsWhileTheyChange) {
  Numbers t(5000);
  int steps = 0;
  for (t.data.First(); !t.data.Eof(); ++steps) {
    ASSERT_EQ(t.data.RecNo(), steps + 1);
    if (t.number.AsInteger() % 700 == 0) {
      t.data.Delete();  // the following record takes its place
      --steps;
    } else if (t.number.AsInteger() % 900 == 0) {
      t.data.Insert();
      t.number.SetAsInteger(1);
      t.data.Post();
      t.data.Next();
      ++steps;
      t.data.Next();
    } else {
      t.data.Next();
    }
    if (t.data.Eof()) break;
    ASSERT_FALSE(t.data.Bof());
  }
  EXPECT_EQ(t.data.RecordCount(), 5000 - 7 + 5);
  EXPECT_EQ(t.Current(), u"5000e");
}

TEST(TMemoryDataSet, AnEmptySetHasBothEnds) {
  Numbers t(0);
  EXPECT_EQ(t.Current(), u"be");
  EXPECT_TRUE(t.data.IsEmpty());
  EXPECT_EQ(t.data.RecNo(), 0);
  EXPECT_TRUE(t.number.IsNull());
  const std::string empty = "T: Cannot perform this operation on an empty dataset";
  EXPECT_EQ(ErrorOf([&] { t.data.Edit(); }), empty);
  EXPECT_EQ(ErrorOf([&] { t.data.Delete(); }), empty);
}

TEST(TMemoryDataSet, BookmarksSurviveOtherRecordsChanges) {
  Numbers t(5);
  t.data.MoveBy(2);
  const TBookmark third = t.data.GetBookmark();
  t.data.First();
  t.data.Delete();
  t.data.Insert();
  EXPECT_FALSE(t.data.BookmarkValid(t.data.GetBookmark()));
  t.data.Cancel();
  t.data.GotoBookmark(third);
  EXPECT_EQ(t.Current(), u"3");
  t.data.Delete();
  t.Append(6);  // may take the deleted record's place in memory
  EXPECT_FALSE(t.data.BookmarkValid(third));
  EXPECT_EQ(ErrorOf([&] { t.data.GotoBookmark(third); }), "T: Record not found");
  EXPECT_FALSE(t.data.BookmarkValid({}));
}

TEST(TMemoryDataSet, FindsFieldsByNameWithoutCase) {
  Numbers t(1);
  EXPECT_EQ(&t.data.FieldByName(u"n"), &t.number);
  EXPECT_EQ(t.data.FindField(u"x"), nullptr);
  EXPECT_EQ(ErrorOf([&] { t.data.FieldByName(u"Χ"); }), "T: Field 'Χ' not found");
  EXPECT_EQ(ErrorOf([&] { t.data.Fields(1); }), "List index out of bounds (1)");
}

TEST(TMemoryDataSet, RefusesWhatItsStateForbids) {
  Numbers t(1);
  EXPECT_EQ(ErrorOf([&] { t.number.SetAsInteger(2); }), "T: Dataset not in edit or insert mode");
  EXPECT_EQ(ErrorOf([&] { t.data.Post(); }), "T: Dataset not in edit or insert mode");
  EXPECT_EQ(ErrorOf([&] { t.data.AddField(u"M", TFieldType::ftFloat); }),
            "T: Cannot perform this operation on an open dataset");
  t.data.Close();
  EXPECT_EQ(ErrorOf([&] { t.data.First(); }),
            "T: Cannot perform this operation on a closed dataset");
  EXPECT_EQ(ErrorOf([&] { t.data.AddField(u"M", TFieldType::ftFloat); }),
            "T: Cannot perform this operation on a dataset with records");
  t.data.EmptyTable();
  EXPECT_EQ(ErrorOf([&] { t.data.AddField(u"n", TFieldType::ftFloat); }),
            "T: Duplicate field name 'n'");
}

TEST(TMemoryDataSet, PostingAsksForRequiredFields) {
  Numbers t(0);
  t.number.SetRequired(true);
  t.data.Append();
  EXPECT_EQ(ErrorOf([&] { t.data.Post(); }), "Field 'N' must have a value");
  EXPECT_EQ(t.data.State(), TDataSetState::dsInsert);
  t.number.SetAsInteger(1);
  t.data.Post();
  EXPECT_EQ(t.All(), u"1 ");
}

TEST(TMemoryDataSet, TellsOfWhatHappens) {
  Numbers t(2);
  String log;
  const auto note = [&](const char16_t* what) { return [&log, what](TDataSet&) { log += what; }; };
  t.data.SetBeforeEdit(note(u"e"));
  t.data.SetAfterEdit(note(u"E"));
  t.data.SetBeforePost(note(u"p"));
  t.data.SetAfterPost(note(u"P"));
  t.data.SetBeforeDelete(note(u"d"));
  t.data.SetAfterDelete(note(u"D"));
  t.data.SetBeforeScroll(note(u"s"));
  t.data.SetAfterScroll(note(u"S"));
  t.data.Edit();
  t.number.SetAsInteger(5);
  t.data.Post();
  t.data.Next();
  t.data.Delete();
  EXPECT_EQ(log, u"eEpPsSdDS");
}

TEST(TMemoryDataSet, AHandlerThatRaisesKeepsTheRecord) {
  Numbers t(2);
  t.data.SetBeforeDelete([](TDataSet&) { Abort(); });
  EXPECT_THROW(t.data.Delete(), EAbort);
  EXPECT_EQ(t.All(), u"1 2 ");
}

TEST(TMemoryDataSet, DisabledControlsHearOnceAtTheEnd) {
  Numbers t(3);
  int heard = 0;
  t.data.SetOnDataChange([&](TDataSet&) { ++heard; });
  t.data.DisableControls();
  t.data.DisableControls();
  t.data.Next();
  t.data.Next();
  t.data.EnableControls();
  EXPECT_EQ(heard, 0);
  t.data.EnableControls();
  EXPECT_EQ(heard, 1);
  t.data.First();
  EXPECT_EQ(heard, 2);
}

TEST(TMemoryDataSet, EqualsAListOverRandomEdits) {
  std::mt19937 random(29);  // NOLINT(bugprone-random-generator-seed): the same cases each time
  Numbers t(0);
  std::vector<int> model;
  const auto go_anywhere = [&] {
    const auto at = model.empty() ? 0 : static_cast<std::ptrdiff_t>(random() % model.size());
    t.data.SetRecNo(at + 1);
    return model.begin() + at;
  };
  for (int step = 0; step < 30000; ++step) {
    const bool growing = step / 5000 % 2 == 0;
    const auto at = go_anywhere();
    if (model.empty() || (random() % 8 < 6) == growing) {
      const bool at_end = random() % 3 == 0;
      at_end ? t.data.Append() : t.data.Insert();
      model.insert(at_end ? model.end() : at, step);
    } else if (random() % 4 == 0) {
      t.data.Edit();
      *at = step;
    } else {
      t.data.Delete();
      model.erase(at);
    }
    if (t.data.State() != TDataSetState::dsBrowse) {
      t.number.SetAsInteger(step);
      t.data.Post();
    }
    if (model.empty()) continue;
    const auto seen = go_anywhere();
    const TBookmark bookmark = t.data.GetBookmark();
    go_anywhere();
    t.data.GotoBookmark(bookmark);
    ASSERT_EQ(t.number.AsInteger(), *seen);
    ASSERT_EQ(t.data.RecNo(), seen - model.begin() + 1);
  }
  ASSERT_EQ(t.data.RecordCount(), std::ssize(model));
}

}  // namespace
}  // namespace zentavo
