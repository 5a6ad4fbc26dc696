#include "tools/zentavo/formula_table.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "zentavo/framework/text.h"

namespace zentavo::tool {
namespace {

TEST(ColumnVariable, TurnsTitlesIntoNames) {
  constexpr std::pair<const char16_t*, const char16_t*> kTitles[] = {
      {u" Price ", u"Price"}, {u"VAT (%)", u"VAT____"}, {u"Τιμή €", u"Τιμή_€"}, {u"2025", u"_2025"},
      {u".x", u"_.x"},        {u"Date", u"_Date"},      {u"AND", u"_AND"},      {u"", u""},
      {u"a$", u"a_"}};
  for (const auto& [title, name] : kTitles) {
    EXPECT_EQ(ToUtf8(ColumnVariable(title)), ToUtf8(name));
  }
}

// The table with the columns added, or the error.
std::string Evaluate(const std::string& table, const std::vector<ColumnFormula>& formulas,
                     RowFailure on_failure = RowFailure::kEndsRun) {
  std::string result;
  std::size_t at = 0;
  CsvReader reader([&](std::span<char> block) {
    const std::size_t count = std::min(block.size(), table.size() - at);
    std::copy_n(table.data() + at, count, block.data());
    at += count;
    return count;
  });
  CsvWriter writer([&](std::string_view block) { result += block; });
  NamedValues variables({"Rate=24"}, {"Mark=x"});
  try {
    const TableOutcome outcome = EvaluateTable(reader, writer, formulas, variables, on_failure);
    if (outcome.failures == 0) return result;
    return result + std::to_string(outcome.failures) + " " + ToUtf8(outcome.first_failure);
  } catch (const Exception& error) {
    return error.what();
  }
}

struct TableRow {
  const char* table;
  std::vector<ColumnFormula> formulas;
  const char* result;
};

TEST(EvaluateTable, AddsAndReplacesColumns) {
  const TableRow rows[] = {
      {"a,b\n1,2\n3,4\n", {{"c", u"a+b"}, {"d", u"c*a"}}, "a,b,c,d\n1,2,3,3\n3,4,7,21\n"},
      {"a,b\n1,2\n", {{"A", u"a*10"}, {"c", u"a+b"}}, "a,b,c\n10,2,12\n"},
      {"a\n1\n", {{"b", u"a*Rate"}, {"c", u"Mark"}}, "a,b,c\n1,24,x\n"},
      {"a,a\n1,2\n", {{"b", u"a"}}, "a,a,b\n1,2,1\n"},
      {"My a,Date\n1,2025-02-03\n",
       {{"c", u"My_a+1"}, {"d", u"Date(_Date)+1"}},
       "My a,Date,c,d\n1,2025-02-03,2,2025-02-04\n"},
      {"a\n1\n", {{"b", u"'x,\"y\"'"}, {"c, d", u"Len(b)"}}, "a,b,\"c, d\"\n1,\"x,\"\"y\"\"\",5\n"},
      {"a\n1\n", {{"b", u"c"}, {"c", u"1"}}, "line 2, b: Unknown field/variable/function : c"},
      {"\xEF\xBB\xBF\"a\",b\r\n\"1\",2\r\n\r\n3,4",
       {{"c", u"a+b"}},
       "\xEF\xBB\xBF\"a\",b,c\r\n\"1\",2,3\r\n3,4,7\r\n"},
      {"a,b\n\"x\ny\",1\n2,z\n",
       {{"c", u"b*1"}},
       "line 4, c: 'z' is not a valid floating point "
       "value"},
      {"a,b\n1\n", {{"c", u"1"}}, "line 2: 1 fields instead of 2"},
      {"", {{"c", u"1"}}, "line 1: No header"},
      {"rate\n1\n", {{"c", u"1"}}, "'rate' is both a column and a variable"},
      {"Τιμή\n2\n", {{"Ποσό", u"ΤΙΜΉ*2"}}, "Τιμή,Ποσό\n2,4\n"},
  };
  for (const TableRow& row : rows) EXPECT_EQ(Evaluate(row.table, row.formulas), row.result);
}

TEST(EvaluateTable, LeavesFailingCellsEmptyAndCountsThem) {
  EXPECT_EQ(
      Evaluate("a,b\n1,2\nx,3\n4,5\n", {{"c", u"a*b"}, {"a", u"Len(c)"}}, RowFailure::kLeavesEmpty),
      "a,b,c\n0,2,2\n0,3,\n0,5,20\n"
      "1 line 3, c: 'x' is not a valid floating point value");
}

// A column changes between numbers and texts, so that what a formula's earlier runs have learnt
// does not hold.
TEST(EvaluateTable, EveryRowDecidesWhatItsCellsAre) {
  std::string table = "a,b\n", expected = "a,b,c\n";
  for (int i = 0; i < 20; ++i) {
    const bool text = i % 3 == 2;
    table += text ? "x,y\n" : "1,2\n";
    expected += text ? "x,y,xy\n" : "1,2,3\n";
  }
  EXPECT_EQ(Evaluate(table, {{"c", u"a+b"}}), expected);
}

}  // namespace
}  // namespace zentavo::tool
