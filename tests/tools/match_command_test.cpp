#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/temporary_folder.h"
#include "tests/tools/tool_run.h"
#include "zentavo/framework/text.h"

namespace zentavo::testing {
namespace {

constexpr const char* kRight =
    "city,amount,doc\nVolos,20,INV-2\nAthens,10.501,INV-9\n,7.25,INV-3\n";

void WriteFile(const std::u16string& name, std::string_view text) {
  std::ofstream(std::filesystem::path(name), std::ios::binary) << text;
}

std::string ReadFile(const std::u16string& name) {
  std::ifstream file(std::filesystem::path(name), std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

struct Row {
  std::vector<std::string> options;
  const char* left;  // on standard input
  int exit_code;
  const char* printed;  // on standard error when the exit code is not 0
};

TEST(MatchCommand, PairsRows) {
  const TemporaryFolder folder;
  const std::string right = ToUtf8(folder / u"right.csv");
  WriteFile(folder / u"right.csv", kRight);
  const char* const kLeft = "doc,amount,city\nINV-1,10.50,Athens\nINV-2,20,Volos\nINV-3,7.25,\n";
  const Row kRows[] = {
      {{"--columns", "doc,amount,city", "--weights", "4,2,1", "--tolerance", "0.01"},
       kLeft,
       0,
       "left,right,score\n1,0,7\n2,2,6\n0,1,3\n"},
      {{"--columns", "Amount", "--weights", "2"},
       "amount\n10.501\n20.0\n",
       0,
       "left,right,score\n0,1,2\n1,0,2\n"},
      {{"--columns", "doc", "--weights", "-2"}, "doc\n", 0, "left,right,score\n"},
      {{"--columns", "doc,city", "--weights", "2"},
       kLeft,
       2,
       "zentavo: 2 columns but 1 weights (try 'zentavo match --help')\n"},
      {{"--columns", "doc", "--weights", "2.5"},
       kLeft,
       2,
       "zentavo: '2.5' is not a whole number (try 'zentavo match --help')\n"},
      {{"--columns", "price", "--weights", "2"}, kLeft, 1, "zentavo: No column 'price' in -\n"},
      {{"--columns", "doc", "--weights", "2"},
       "doc,a\nx\n",
       1,
       "zentavo: line 2: 1 fields instead of 2\n"},
  };
  for (const Row& row : kRows) {
    std::vector<std::string> arguments = {"match", "-", right};
    arguments.insert(arguments.end(), row.options.begin(), row.options.end());
    const ProgramRun run = RunTool(arguments, row.left);
    EXPECT_EQ(run.exit_code, row.exit_code) << row.printed;
    EXPECT_EQ(row.exit_code == 0 ? run.output : run.error, row.printed);
  }
}

TEST(MatchCommand, PrintsNoPairWithoutRightRows) {
  const TemporaryFolder folder;
  const std::string right = ToUtf8(folder / u"right.csv");
  WriteFile(folder / u"right.csv", "doc,a\n");
  const ProgramRun run =
      RunTool({"match", "-", right, "--columns", "doc", "--weights", "1"}, "doc,a\nx,1\n");
  EXPECT_EQ(run.output, "left,right,score\n");
}

TEST(OptimiseCommand, AssignsColumns) {
  const char* const kNamed = ",Night,Day,Evening\nAnna,3,1,2\nBoris,2,4,6\nCleo,2,3,1\n";
  const Row kRows[] = {
      {{},
       kNamed,
       0,
       "row,column,cost\nAnna,Day,1\nBoris,Night,2\nCleo,Evening,1\n\ncost 4\ngenerations "},
      {{"--mask", "X,Day"},
       kNamed,
       0,
       "row,column,cost\nAnna,Evening,2\nBoris,Day,4\nCleo,Night,2\n\ncost 8\ngenerations "},
      {{}, "4,1.5\n3,2\n", 0, "row,column,cost\n0,1,1.5\n1,0,3\n\ncost 4.5\ngenerations "},
      {{}, "4\n3\n", 1, "zentavo: 2 rows cannot have a column each of 1\n"},
      {{}, "a,b\n3,x\n", 1, "zentavo: line 2: 'x' is not a number\n"},
      {{}, "", 1, "zentavo: No costs\n"},
      {{"--mask", "Day,Day"}, kNamed, 1, "zentavo: Column 'Day' is twice in the mask\n"},
      {{"--mask", "Noon"}, kNamed, 1, "zentavo: No column 'Noon' among the costs\n"},
      {{"--mask", "X,X,X,X"}, kNamed, 1, "zentavo: The mask has 4 items for 3 rows\n"},
  };
  for (const Row& row : kRows) {
    std::vector<std::string> arguments = {"optimise", "assign", "-", "--seed", "7"};
    arguments.insert(arguments.end(), row.options.begin(), row.options.end());
    const ProgramRun run = RunTool(arguments, row.left);
    EXPECT_EQ(run.exit_code, row.exit_code) << row.printed << run.error;
    const std::string& printed = row.exit_code == 0 ? run.output : run.error;
    EXPECT_EQ(printed.substr(0, std::string(row.printed).size()), row.printed);
  }
}

TEST(OptimiseCommand, ReportsTheCourseOfTheRun) {
  const TemporaryFolder folder;
  const std::string report = ToUtf8(folder / u"report.html");
  const ProgramRun run = RunTool({"optimise", "assign", "-", "--seed", "1", "--report", report},
                                 ",\"<b>\",B,C\nA&B,9,2,7\nX,6,4,3\nY,5,8,1\n");
  ASSERT_EQ(run.exit_code, 0) << run.error;
  const std::string page = ReadFile(folder / u"report.html");
  for (const char* part : {"<svg ", "class=\"best\"", "class=\"average\"", "&lt;b&gt;", "A&amp;B",
                           "Total cost <b>9</b>", "</html>\n"}) {
    EXPECT_NE(page.find(part), std::string::npos) << part;
  }
  EXPECT_EQ(page.find("http"), std::string::npos);  // nothing to be fetched
}

}  // namespace
}  // namespace zentavo::testing
