#include "zentavo/textout/html_object.h"

#include <gtest/gtest.h>

#include <functional>
#include <utility>
#include <vector>

#include "tests/support/error_of.h"
#include "zentavo/framework/exception.h"
#include "zentavo/framework/memory_data_set.h"
#include "zentavo/framework/stream.h"

namespace zentavo {
namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;

struct Part {
  AnsiString name, content;
  bool operator==(const Part&) const = default;
};
using Parts = std::vector<Part>;

Parts PartsOf(const TZentavoHtmlObj& object) {
  Parts parts(static_cast<std::size_t>(object.PartsCount()));
  for (std::int32_t i = 0; i < object.PartsCount(); ++i) {
    Part& part = parts[static_cast<std::size_t>(i)];
    object.GetPart(i, part.name, part.content);
  }
  return parts;
}

AnsiString Saved(const Parts& parts) {
  TZentavoHtmlObj object;
  for (const Part& part : parts) object.AddPart(part.name, part.content);
  TMemoryStream stream;
  object.SaveToStream(stream);
  return {reinterpret_cast<const char*>(stream.Memory()), static_cast<std::size_t>(stream.Size())};
}

Parts Loaded(std::string_view bytes) {
  TMemoryStream stream;
  stream.WriteBuffer(bytes.data(), std::ssize(bytes));
  TZentavoHtmlObj object;
  object.AddPart("old", "part");
  object.LoadFromStream(stream);
  return PartsOf(object);
}

TEST(HtmlObject, SavesTheStatedForm) {
  EXPECT_EQ(Saved({}), "\0\0\0\0"sv);
  EXPECT_EQ(Saved({{"b", "0123456789"}, {"", ""}}),
            "\x0B\0\0\0\x01"
            "b\x0A\0\0\0"
            "0123456789\0\0\0\0\0"sv);
}

TEST(HtmlObject, ReadsBackWhatIsLongEnough) {
  struct Row {
    Parts saved;
    std::size_t read_back;
  };
  const Row rows[] = {
      {{}, 0},
      {{{"b", "0123456789"}}, 1},
      {{{"b", "012"}}, 0},  // the total is 4, where the reader stands
      {{{"b", "0123"}}, 1},
      {{{"b", "0123456789"}, {"c", "ab"}}, 1},  // the position has overtaken the total
      {{{"b", AnsiString(100, 'x')}, {"b", "y"}, {"", "z"}}, 1},
      {{{"α\0"s, AnsiString(300, '\xFF')}, {"c", AnsiString(70'000, '\0')}}, 2},
  };
  for (const Row& row : rows) {
    const Parts expected(row.saved.begin(),
                         row.saved.begin() + static_cast<std::ptrdiff_t>(row.read_back));
    EXPECT_EQ(Loaded(Saved(row.saved)), expected);
  }
}

// With every length at its extremes too, nothing but whole parts comes back.
TEST(HtmlObject, StreamsMayBeDamagedAnywhere) {
  const Parts parts = {{"first", AnsiString(40, 'a')}, {"second", AnsiString(50, 'b')}};
  const AnsiString whole = Saved(parts);
  const std::size_t first_end = 4 + 1 + 5 + 4 + 40;
  for (std::size_t cut = 0; cut < whole.size(); ++cut) {
    EXPECT_EQ(Loaded(whole.substr(0, cut)),
              cut < first_end ? Parts() : Parts(parts.begin(), parts.begin() + 1))
        << cut;
  }
  for (const std::string_view length :
       {"\xFF\xFF\xFF\xFF"sv, "\0\0\0\x80"sv, "\xFF\xFF\xFF\x7F"sv}) {
    for (std::size_t at = 0; at + 4 <= whole.size(); ++at) {
      AnsiString damaged = whole;
      damaged.replace(at, 4, length);
      EXPECT_LE(Loaded(damaged).size(), 2U) << at;
    }
  }
  const auto with = [&](std::size_t at, std::string_view length) {
    return Loaded(AnsiString(whole).replace(at, 4, length));
  };
  EXPECT_EQ(with(0, "\xFF\xFF\xFF\xFF"), Parts());   // no total
  EXPECT_EQ(with(0, "\xFF\xFF\xFF\x7F"), parts);     // a huge one
  EXPECT_EQ(with(10, "\xFF\xFF\xFF\xFF"), Parts());  // negative content
}

TEST(HtmlObject, SavingCutsNothingOff) {
  TMemoryStream stream;
  stream.WriteBuffer("0123456789", 10);
  TZentavoHtmlObj().SaveToStream(stream);
  EXPECT_EQ(stream.Size(), 10);
  EXPECT_EQ(stream.Position(), 4);
}

TEST(HtmlObject, KeepsPartsInOrder) {
  TZentavoHtmlObj object;
  object.AddPart("a", "1");
  object.AddPart("b", "2");
  object.AddPart("b", "3");
  EXPECT_EQ(object.GetPartByName("b"), 1);
  EXPECT_EQ(object.GetPartByName("B"), -1);
  object.SetPart(0, "c", "4");
  object.SetPart(3, "ignored", "");
  object.DeletePart(1);
  EXPECT_EQ(PartsOf(object), (Parts{{"c", "4"}, {"b", "3"}}));
  AnsiString name = "old";
  AnsiString content = "old";
  object.GetPart(2, name, content);
  EXPECT_EQ(name + content, "");
  object.ClearParts();
  EXPECT_EQ(object.PartsCount(), 0);
}

TEST(HtmlObject, IndicesThatAreNoneRaise) {
  TZentavoHtmlObj object;
  AnsiString text;
  for (const auto& [index, call] :
       {std::pair<std::int32_t, std::function<void()>>(0, [&] { object.DeletePart(0); }),
        {-1, [&] { object.GetPart(-1, text, text); }},
        {-2, [&] { object.SetPart(-2, "", ""); }}}) {
    EXPECT_EQ(testing::ErrorOf<EListError>(call),
              "List index out of bounds (" + std::to_string(index) + ")");
  }
}

TEST(HtmlObject, LongNamesKeepTheLowBitsOfTheirLength) {
  TZentavoHtmlObj object;
  object.AddPart(AnsiString(255, 'x'), "");
  object.AddPart(AnsiString(256, 'x'), "");
  object.AddPart(AnsiString(300, 'x'), "");
  EXPECT_EQ(PartsOf(object),
            (Parts{{AnsiString(255, 'x'), ""}, {"", ""}, {AnsiString(44, 'x'), ""}}));
}

TEST(HtmlObject, GoesThroughABlob) {
  TMemoryDataSet pages(u"PAGES");
  TField& blob = pages.AddField(u"DOC", TFieldType::ftBlob);
  pages.Open();
  pages.Append();
  TZentavoHtmlObj object;
  object.AddPart("body", AnsiString(1000, '\xC1'));
  object.SaveDocToBlob(blob);
  pages.Post();
  TMemoryStream stream;
  blob.SaveToStream(stream);
  TZentavoHtmlObj read;
  read.LoadFromStream(stream);
  EXPECT_EQ(PartsOf(read), PartsOf(object));
}

}  // namespace
}  // namespace zentavo
