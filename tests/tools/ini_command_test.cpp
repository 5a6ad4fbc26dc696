#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/tools/tool_run.h"
#include "zentavo/framework/text.h"

namespace zentavo::testing {
namespace {

struct Row {
  std::vector<std::string> arguments;  // behind "ini FILE"
  int exit_code;
  std::string printed;  // on standard output, or on standard error when the exit code is not 0
};

void ExpectRuns(const TemporaryFolder& folder, const std::vector<Row>& rows) {
  for (const Row& row : rows) {
    std::vector<std::string> arguments = {"ini", ToUtf8(folder / u"file.ini")};
    arguments.insert(arguments.end(), row.arguments.begin(), row.arguments.end());
    const ProgramRun run = RunTool(arguments);
    EXPECT_EQ(run.exit_code, row.exit_code) << run.error;
    EXPECT_EQ(row.exit_code == 0 ? run.output : run.error, row.printed);
  }
}

TEST(IniCommand, ReadsAndChangesAFile) {
  const TemporaryFolder folder;
  ExpectRuns(folder, {{{"text"}, 0, ""},
                      {{"set", "Α", "name", "-5"}, 0, ""},
                      {{"set", "b", "k", ""}, 0, ""},
                      {{"sections"}, 0, "Α\nb\n"},
                      {{"keys", "α"}, 0, "name\n"},
                      {{"get", "α", "NAME"}, 0, "-5\n"},
                      {{"--case-sensitive", "get", "Α", "NAME", "none"}, 0, "none\n"},
                      {{"get", "Α", "NAME", "none", "--case-sensitive"}, 0, "none\n"},
                      {{"get", "Α", "absent"}, 0, "\n"},
                      {{"delete", "α", "absent"}, 0, ""},
                      {{"delete", "α", "name"}, 0, ""},
                      {{"erase", "B"}, 0, ""},
                      {{"text"}, 0, "[Α]\n\n"}});
}

TEST(IniCommand, WritesTheEncodingAskedFor) {
  const TemporaryFolder folder;
  ExpectRuns(folder, {{{"--encoding", "cp1253", "set", "s", "k", "α"}, 0, ""},
                      {{"--encoding", "cp1253", "get", "s", "k"}, 0, "α\n"},
                      {{"--encoding", "utf-8", "get", "s", "k"}, 0, "\xEF\xBF\xBD\n"}});
  const std::string file = ToUtf8(folder / u"file.ini");
  const std::string before = ReadBytes(folder / u"file.ini");
  ExpectRuns(folder, {{{"--encoding", "utf-8", "set", "s", "k", "x"},
                       1,
                       "zentavo: '" + file + "' is not valid text in its encoding\n"}});
  EXPECT_EQ(ReadBytes(folder / u"file.ini"), before);
}

TEST(IniCommand, RefusesWhatTheFileCannotKeep) {
  const TemporaryFolder folder;
  const std::string hint = " (try 'zentavo ini set --help')\n";
  ExpectRuns(
      folder,
      {{{"set", "s", "a=b", "c"},
        2,
        "zentavo: 'a=b=c' cannot stand in an ini file under 's'" + hint},
       {{"set", "s", "k", "1\n[t]"},
        2,
        "zentavo: 'k=1 [t]' cannot stand in an ini file under 's'" + hint},
       {{"set", "s", ";k", "1"}, 2, "zentavo: ';k=1' cannot stand in an ini file under 's'" + hint},
       {{"--encoding", "latin", "text"},
        2,
        "zentavo: 'latin' is not utf-8, utf-16, utf-16be or cpNNNN (try 'zentavo ini text "
        "--help')\n"},
       {{"--encoding", "cp64999", "text"}, 1, "zentavo: Unknown code page 64999\n"},
       {{"text"}, 0, ""}});
}

TEST(IniCommand, WorksOverStandardStreams) {
  const ProgramRun run = RunTool({"ini", "-", "set", "s", "k", "2"}, ";c\n[s]\nk = 1\n");
  EXPECT_EQ(run.exit_code, 0) << run.error;
  std::string output = run.output;
  std::erase(output, '\r');  // part of the line break of files on Windows
  EXPECT_EQ(output, "[s]\nk=2\n\n");
}

}  // namespace
}  // namespace zentavo::testing
