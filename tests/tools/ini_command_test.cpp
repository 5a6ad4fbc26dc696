#include <string>
#include <vector>

#include "tests/tools/tool_run.h"
#include "zentavo/framework/text.h"

namespace zentavo::testing {
namespace {

class IniCommand : public ::testing::Test {
 protected:
  void Expect(const std::vector<ToolCase>& cases) const {
    ExpectRuns({"ini", file_}, "ini set", cases);
  }

  const TemporaryFolder folder_;
  const std::string file_ = ToUtf8(folder_ / u"file.ini");
};

TEST_F(IniCommand, ReadsAndChangesAFile) {
  Expect({{{"text"}, ""},
          {{"set", "Α", "name", "-5"}, ""},
          {{"set", "b", "k", ""}, ""},
          {{"sections"}, "Α\nb\n"},
          {{"keys", "α"}, "name\n"},
          {{"get", "α", "NAME"}, "-5\n"},
          {{"--case-sensitive", "get", "Α", "NAME", "none"}, "none\n"},
          {{"get", "Α", "NAME", "none", "--case-sensitive"}, "none\n"},
          {{"get", "Α", "absent"}, "\n"},
          {{"delete", "α", "name"}, ""},
          {{"erase", "B"}, ""},
          {{"text"}, "[Α]\n\n"}});
}

TEST_F(IniCommand, WritesTheEncodingAskedFor) {
  Expect({{{"--encoding", "cp1253", "set", "s", "k", "α"}, ""},
          {{"--encoding", "cp1253", "get", "s", "k"}, "α\n"},
          {{"--encoding", "utf-8", "get", "s", "k"}, "\xEF\xBF\xBD\n"}});
  const std::string before = ReadBytes(PathOf(file_));
  Expect({{{"--encoding", "utf-8", "set", "s", "k", "x"},
           "'" + file_ + "' is not valid text in its encoding",
           1}});
  EXPECT_EQ(ReadBytes(PathOf(file_)), before);
}

TEST_F(IniCommand, RefusesWhatTheFileCannotKeep) {
  Expect({{{"set", "s", "a=b", "c"}, "'a=b=c' cannot stand in an ini file under 's'", 2},
          {{"set", "s", "k", "1\n[t]"}, "'k=1 [t]' cannot stand in an ini file under 's'", 2},
          {{"set", "s", ";k", "1"}, "';k=1' cannot stand in an ini file under 's'", 2},
          {{"--encoding", "latin", "set", "s", "k", "1"},
           "'latin' is not utf-8, utf-16, utf-16be or cpNNNN",
           2},
          {{"--encoding", "cp64999", "text"}, "Unknown code page 64999", 1},
          {{"text"}, ""}});
}

TEST_F(IniCommand, WorksOverStandardStreams) {
  const ProgramRun run = RunTool({"ini", "-", "set", "s", "k", "2"}, ";c\n[s]\nk = 1\n");
  EXPECT_EQ(run.exit_code, 0) << run.error;
  std::string output = run.output;
  std::erase(output, '\r');  // part of the line break of files on Windows
  EXPECT_EQ(output, "[s]\nk=2\n\n");
}

}  // namespace
}  // namespace zentavo::testing
