#include "tools/zentavo/csv.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>

#include "zentavo/framework/text.h"

namespace zentavo::tool {
namespace {

// Gives the text in blocks of the size that is asked for.
CsvReader::Source From(std::string text) {
  return [text = std::move(text), at = std::size_t{0}](std::span<char> block) mutable {
    const std::size_t count = std::min(block.size(), text.size() - at);
    std::copy_n(text.data() + at, count, block.data());
    at += count;
    return count;
  };
}

// "1[a][b c]": the line and the fields of each record, or the error.
std::string Dump(const std::string& text, CsvLimits limits = {}) {
  std::string dump;
  try {
    CsvReader reader(From(text), limits);
    while (reader.Next()) {
      dump += std::to_string(reader.Line());
      for (const std::string_view field : reader.Fields()) {
        dump.append("[").append(field).append("]");
      }
    }
  } catch (const CsvError& error) {
    dump += error.what();
  }
  return dump;
}

TEST(CsvReader, ReadsRecordsWithBlockBordersAnywhere) {
  struct Row {
    const char *text, *dump;
  };
  for (const auto& [text, dump] :
       {Row{"", ""}, Row{"\xEF\xBB\xBF", ""}, Row{"a,b\r\n1,2\r\n", "1[a][b]2[1][2]"},
        Row{"\xEF\xBB\xBF\"a\",b\n1,2", "1[a][b]2[1][2]"}, Row{"a,\n,\n,b", "1[a][]2[][]3[][b]"},
        Row{" a , b \n", "1[ a ][ b ]"}, Row{"a\n\n1\n", "1[a]2[]3[1]"},
        Row{"a,b\n\n\r\n1,2\n\n", "1[a][b]4[1][2]"}, Row{"a,b\n\"\"\n", "1[a][b]2[]"},
        Row{"a\rb,c\r\r\n", "1[a\rb][c\r]"}, Row{"\"a\"\"b\"\"\",\"\"\"\"\n", R"(1[a"b"]["])"},
        Row{"\"a\r\nb\",c\n1,2\n", "1[a\r\nb][c]3[1][2]"},
        Row{"a\nb\"c\n", "1[a]line 2: Quote in a field without quotes"},
        Row{"a, \"b\"\n", "line 1: Quote in a field without quotes"},
        Row{"a\n\"b\"c\n", "1[a]line 2: Text behind a closing quote"},
        Row{"\"b\"\rc\n", "line 1: Text behind a closing quote"},
        Row{"\"a\nb\"x", "line 2: Text behind a closing quote"},
        Row{"a\n\"b\nc", "1[a]line 2: Quote without an end"},
        Row{R"("a"")", "line 1: Quote without an end"}}) {
    EXPECT_EQ(Dump(text), dump) << text;
    for (std::size_t block = 1; block < 12; ++block) {
      EXPECT_EQ(Dump(text, {.block_bytes = block}), dump) << block << ": " << text;
    }
  }
}

TEST(CsvReader, KeepsFieldsAsWritten) {
  CsvReader reader(From("a,\"b\"\"c\"\r\n"));
  ASSERT_TRUE(reader.Next());
  EXPECT_EQ(reader.WrittenFields()[0], "a");
  EXPECT_EQ(reader.WrittenFields()[1], "\"b\"\"c\"");
  EXPECT_EQ(reader.LineBreak(), "\r\n");
  EXPECT_FALSE(reader.HasMark());
}

TEST(CsvReader, RefusesRecordsBeyondItsLimits) {
  const CsvLimits limits{.record_bytes = 7, .fields = 3, .block_bytes = 2};
  EXPECT_EQ(Dump("1234567\r\n1,2,567", limits), "1[1234567]2[1][2][567]");
  EXPECT_EQ(Dump("a\n12345678", limits), "1[a]line 2: Record longer than 7 bytes");
  EXPECT_EQ(Dump("12345678\n", {.record_bytes = 7}), "line 1: Record longer than 7 bytes");
  EXPECT_EQ(Dump("1,2,3,4", limits), "line 1: More than 3 fields");
}

TEST(CsvReader, StopsReadingWhereARecordIsTooLong) {
  std::size_t taken = 0;
  CsvReader reader(
      [&](std::span<char> block) {
        std::fill(block.begin(), block.end(), 'x');
        taken += block.size();
        return block.size();
      },
      {.record_bytes = 1000, .block_bytes = 16});
  EXPECT_THROW(reader.Next(), CsvError);
  EXPECT_LT(taken, 4000u);
}

TEST(CsvWriter, RecordOfAnEmptyFieldIsNoEmptyLine) {
  std::string text;
  CsvWriter writer([&](std::string_view block) { text += block; });
  for (const int fields : {1, 2, 1}) {
    for (int i = 0; i < fields; ++i) writer.Field("");
    writer.EndRecord();
  }
  writer.WrittenField("");
  writer.EndRecord();
  writer.Flush();
  EXPECT_EQ(text, "\"\"\n,\n\"\"\n\n");
}

// What is written reads back as the same fields, whatever is in them.
TEST(CsvWriter, FieldsReadBack) {
  std::mt19937 random(7);
  constexpr std::string_view kBytes = "ab,\"\r\n \xCE\xB1";
  for (int round = 0; round < 2000; ++round) {
    std::string text;
    std::string expected = "1";
    CsvWriter writer([&](std::string_view block) { text += block; });
    for (int i = 0; i < 3; ++i) {
      std::string field(random() % 6, ' ');
      for (char& byte : field) byte = kBytes[random() % kBytes.size()];
      writer.Field(field);
      expected.append("[").append(field).append("]");
    }
    writer.EndRecord(round % 2 == 0 ? "\n" : "\r\n");
    writer.Flush();
    EXPECT_EQ(Dump(text, {.block_bytes = 1 + random() % 8}), expected) << text;
  }
}

}  // namespace
}  // namespace zentavo::tool
