#include <filesystem>
#include <string>

#include "tests/tools/tool_run.h"
#include "zentavo/framework/text.h"

namespace zentavo::testing {
namespace {

TEST(FormulaCommand, PrintsValuesAndFaultsInOneLine) {
  ExpectRuns({"formula"}, "formula",
             {{{"IF(Qty>10, Price*0.9, Price)", "-n", "Price=20", "-n", "Qty=12"}, "18\n"},
              {{"-s", "Όνομα=[α,β]", "Όνομα+'!'"}, "[α,β]!\n"},
              {{"-5+3"}, "-2\n"},
              {{"-n", "x=-.5", "--", "-x"}, "0.5\n"},
              {{"Date('2025-01-31')+1"}, "2025-02-01\n"},
              {{"Char(10)"}, "\n"},
              {{""}, "\n"},
              {{"1+Prise"}, "Unknown field/variable/function : Prise", 1},
              {{"Number('a\nb')"}, "'a b' is not a valid floating point value", 1},
              {{}, "TEXT or --table is required", 2},
              {{"-n", "x", "1"}, "'x' is not NAME=VALUE", 2},
              {{"-n", "x=1,5", "1"}, "'1,5' is not a number", 2},
              {{"-n", "Date=1", "1"}, "'Date' cannot be the name of a variable", 2},
              {{"1", "2"}, "The following argument was not expected: 2", 2},
              {{"--set", "a=1"}, "--set requires --table", 2}});
}

TEST(FormulaCommand, ShowsWhatIsAskedFor) {
  ExpectRuns(
      {"formula"}, "formula",
      {{{"--show", "type", "Date('2025-01-31')"}, "date\n"},
       {{"--show", "debug", "(2+3)*4"}, "(2+3)*4\n"},
       {{"--show", "compiled", "Len('\\é')+1"},
        "$Len('\\u005C\\u00E9')+\\u0002\\u0000\\u0000\\u0000\\u3FF0\\u0000\\u0000\\u0000\\u0000\n"},
       {{"--escaped",
         "$\\u0002\\u0000\\u0000\\u0000\\u3FF0\\u0000\\u0000\\u0000\\u0000+"
         "\\u0002\\u0000\\u0000\\u0000\\u4000\\u0000\\u0000\\u0000\\u0000"},
        "3\n"},
       {{"--escaped", "$\\u0002\\u0000"}, "Invalid compiled formula", 1},
       {{"--escaped", "a\\u12G4"}, "'\\u12G4' is not \\uXXXX", 2}});
}

TEST(Tool, AnswersHelpAndVersion) {
  EXPECT_EQ(RunTool({"--version"}).output.substr(0, 8), "zentavo ");
  EXPECT_NE(RunTool({"--help"}).output.find("formula"), std::string::npos);
  EXPECT_NE(RunTool({"formula", "--help"}).output.find("--keep-going"), std::string::npos);
  EXPECT_EQ(RunTool({}).error, "zentavo: A subcommand is required (try 'zentavo --help')\n");
}

class FormulaTable : public ::testing::Test {
 protected:
  std::string Utf8(const char16_t* name) const { return ToUtf8(folder_ / name); }
  std::filesystem::path Path(const char16_t* name) const { return folder_ / name; }
  std::ptrdiff_t Files() const {
    return std::distance(std::filesystem::directory_iterator(folder_.Path()), {});
  }

  TemporaryFolder folder_;
};

TEST_F(FormulaTable, ReadsAndWritesFilesAndStandardStreams) {
  WriteBytes(Path(u"τιμές.csv"), "a,b\r\n1,\"x, y\"\r\n");
  const std::string name = Utf8(u"τιμές.csv");
  const std::string expected = "a,b,c\r\n1,\"x, y\",\"x, y!\"\r\n";
  EXPECT_EQ(RunTool({"formula", "--table", name, "--set", "c=b+'!'"}).output, expected);
  EXPECT_EQ(RunTool({"formula", "--table", "-", "--set", "c=b+'!'"}, ReadBytes(Path(u"τιμές.csv")))
                .output,
            expected);
  const ProgramRun in_place = RunTool({"formula", "--table", name, "--set", "c=b+'!'", "-o", name});
  EXPECT_EQ(in_place.error, "");
  EXPECT_EQ(ReadBytes(Path(u"τιμές.csv")), expected);
  EXPECT_EQ(Files(), 1);
}

TEST_F(FormulaTable, FailureLeavesTheOutputAsItWas) {
  WriteBytes(Path(u"in.csv"), "a\n1\nx\n");
  WriteBytes(Path(u"out.csv"), "old");
  const ProgramRun run =
      RunTool({"formula", "--table", Utf8(u"in.csv"), "--set", "b=a*2", "-o", Utf8(u"out.csv")});
  EXPECT_EQ(run.exit_code, 1);
  EXPECT_EQ(run.error, "zentavo: line 3, b: 'x' is not a valid floating point value\n");
  EXPECT_EQ(ReadBytes(Path(u"out.csv")), "old");
  EXPECT_EQ(Files(), 2);
}

TEST_F(FormulaTable, NamesTheFileThatCannotBeOpened) {
  const ProgramRun run = RunTool({"formula", "--table", Utf8(u"none.csv"), "-o", Utf8(u"out.csv")});
  EXPECT_EQ(run.exit_code, 1);
  EXPECT_TRUE(run.error.starts_with("zentavo: Cannot open file \"" + Utf8(u"none.csv") + "\". "));
  EXPECT_EQ(Files(), 0);
}

TEST_F(FormulaTable, KeepGoingCountsFailures) {
  const ProgramRun run =
      RunTool({"formula", "--keep-going", "--set", "b=a*2", "--table", "-"}, "a\n1\nx\ny\n");
  EXPECT_EQ(run.exit_code, 0);
  EXPECT_EQ(run.output, "a,b\n1,2\nx,\ny,\n");
  EXPECT_EQ(run.error,
            "zentavo: 2 failures, the first in line 3, b: 'x' is not a valid floating point "
            "value\n");
}

}  // namespace
}  // namespace zentavo::testing
