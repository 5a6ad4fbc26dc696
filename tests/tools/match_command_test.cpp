#include "tests/tools/tool_run.h"
#include "zentavo/framework/text.h"

namespace zentavo::testing {
namespace {

TEST(MatchCommand, PairsRows) {
  const TemporaryFolder folder;
  WriteBytes(folder / u"right.csv",
             "city,amount,doc\nVolos,20,INV-2\nAthens,10.501,INV-9\n,7.25,INV-3\n");
  const char* const kLeft = "doc,amount,city\nINV-1,10.50,Athens\nINV-2,20,Volos\nINV-3,7.25,\n";
  ExpectRuns({"match", "-", ToUtf8(folder / u"right.csv"), "--columns"}, "match",
             {{{"doc,amount,city", "--weights", "4,2,1", "--tolerance", "0.01"},
               "left,right,score\n1,0,7\n2,2,6\n0,1,3\n",
               0,
               kLeft},
              {{"Amount", "--weights", "2"},
               "left,right,score\n0,1,2\n1,0,2\n",
               0,
               "amount\n10.501\n20.0\n"},
              {{"doc", "--weights", "-2"}, "left,right,score\n", 0, "doc\n"},
              {{"doc,city", "--weights", "2"}, "2 columns but 1 weights", 2, kLeft},
              {{"doc", "--weights", "2.5"}, "'2.5' is not a whole number", 2, kLeft},
              {{"price", "--weights", "2"}, "No column 'price' in -", 1, kLeft},
              {{"doc", "--weights", "2"}, "line 2: 1 fields instead of 2", 1, "doc,a\nx\n"}});
  WriteBytes(folder / u"right.csv", "doc,a\n");
  ExpectRuns({"match", "-", ToUtf8(folder / u"right.csv")}, "match",
             {{{"--columns", "doc", "--weights", "1"}, "left,right,score\n", 0, "doc,a\nx,1\n"}});
}

TEST(OptimiseCommand, AssignsColumns) {
  const char* const kNamed = ",Night,Day,Evening\nAnna,3,1,2\nBoris,2,4,6\nCleo,2,3,1\n";
  const std::vector<std::string> command = {"optimise", "assign", "-", "--seed", "7"};
  const ToolCase good[] = {
      {{}, "row,column,cost\nAnna,Day,1\nBoris,Night,2\nCleo,Evening,1\n\ncost 4\ng", 0, kNamed},
      {{"--mask", "X,Day"},
       "row,column,cost\nAnna,Evening,2\nBoris,Day,4\nCleo,Night,2\n\ncost 8\ngenerations ",
       0,
       kNamed},
      {{}, "row,column,cost\n0,1,1.5\n1,0,3\n\ncost 4.5\ngenerations ", 0, "4,1.5\n3,2\n"}};
  for (const ToolCase& row : good) {
    std::vector<std::string> arguments = command;
    arguments.insert(arguments.end(), row.arguments.begin(), row.arguments.end());
    const ProgramRun run = RunTool(arguments, row.input);
    EXPECT_EQ(run.output.substr(0, row.printed.size()), row.printed) << run.error;
  }
  ExpectRuns(command, "optimise assign",
             {{{}, "2 rows cannot have a column each of 1", 1, "4\n3\n"},
              {{}, "line 2: 'x' is not a number", 1, "a,b\n3,x\n"},
              {{}, "No costs", 1, ""},
              {{"--mask", "Day,Day"}, "Column 'Day' is twice in the mask", 1, kNamed},
              {{"--mask", "Noon"}, "No column 'Noon' among the costs", 1, kNamed},
              {{"--mask", "X,X,X,X"}, "The mask has 4 items for 3 rows", 1, kNamed}});
}

TEST(OptimiseCommand, ReportsTheCourseOfTheRun) {
  const TemporaryFolder folder;
  const std::string report = ToUtf8(folder / u"report.html");
  const ProgramRun run = RunTool({"optimise", "assign", "-", "--seed", "1", "--report", report},
                                 ",\"<b>\",B,C\nA&B,9,2,7\nX,6,4,3\nY,5,8,1\n");
  ASSERT_EQ(run.exit_code, 0) << run.error;
  const std::string page = ReadBytes(folder / u"report.html");
  for (const char* part : {"<svg ", "class=\"best\"", "class=\"average\"", "&lt;b&gt;", "A&amp;B",
                           "Total cost <b>9</b>", "</html>\n"}) {
    EXPECT_NE(page.find(part), std::string::npos) << part;
  }
  EXPECT_EQ(page.find("http"), std::string::npos);  // nothing to be fetched
}

}  // namespace
}  // namespace zentavo::testing
