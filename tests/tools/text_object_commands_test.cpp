#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/user_settings.h"
#include "tests/tools/tool_run.h"
#include "zentavo/foundation/errors.h"
#include "zentavo/framework/text.h"
#include "zentavo/textout/spell.h"

namespace zentavo::testing {
namespace {

struct Row {
  std::vector<std::string> arguments;
  int exit_code;
  std::string printed;  // on standard output, or on standard error when the exit code is not 0
};

void ExpectRuns(const std::vector<Row>& rows) {
  for (const Row& row : rows) {
    const ProgramRun run = RunTool(row.arguments);
    EXPECT_EQ(run.exit_code, row.exit_code) << row.arguments[1] << run.error;
    EXPECT_EQ(row.exit_code == 0 ? run.output : run.error, row.printed);
  }
}

TEST(TextCommand, MakesHtmlAndAsksCodePages) {
  ExpectRuns({
      {{"text", "html", "Hi\n<Open$OPEN 1>"},
       0,
       "<html>\r\n<p>Hi</p>\r\n<p><a href=\"xcmd:OPEN 1\">Open</a></p>\r\n</html>\n"},
      {{"text", "fix-html", "External()"}, 0, "_external()\n"},
      {{"text", "fits", "Αθήνα", "1253"}, 0, "yes\n"},
      {{"text", "fits", "Αθήνα", "1252"}, 0, "no\n"},
      {{"text", "fits", "a", "12345"}, 1, "zentavo: Unknown code page 12345\n"},
      {{"text", "words", "x", "EN"},
       2,
       "zentavo: 'x' is not a number (try 'zentavo text words --help')\n"},
  });
}

TEST(TextCommand, PutsAmountsInWordsAsTheLibraryDoes) {
  const std::vector<std::string> arguments = {"text", "words", "12.5", "EN"};
  try {
    ExpectRuns({{arguments, 0, ToUtf8(Spell(12.5, u"", u"EN")) + "\n"}});
  } catch (const EZentavoError& error) {  // systems without the words
    ExpectRuns({{arguments, 1, std::string("zentavo: ") + error.what() + "\n"}});
  }
}

TEST(HtmlCommand, PacksListsAndUnpacks) {
  const TemporaryFolder folder;
  const std::string content = ToUtf8(folder / u"content");
  const std::string object = ToUtf8(folder / u"object");
  WriteBytes(PathOf(content), std::string("<p>\0 a long content</p>", 23));
  ExpectRuns({
      {{"html", "pack", object, "body=" + content, "κεφαλή=" + content}, 0, ""},
      {{"html", "list", object}, 0, "body\t23\nκεφαλή\t23\n"},
      {{"html", "get", object, "κεφαλή"}, 0, ReadBytes(PathOf(content))},
      {{"html", "get", object, "other"}, 1, "zentavo: There is no part 'other'\n"},
      {{"html", "pack", object, "body"},
       2,
       "zentavo: 'body' is not NAME=VALUE (try 'zentavo html pack --help')\n"},
  });
  const std::string before = ReadBytes(PathOf(object));
  EXPECT_EQ(RunTool({"html", "pack", object, "body=" + content + "x"}).exit_code, 1);
  EXPECT_EQ(ReadBytes(PathOf(object)), before);
  EXPECT_EQ(RunTool({"html", "list", "-"}, "abc").output, "");
}

TEST(SettingCommand, KeepsSettings) {
  const OwnUserSettings own;
  ExpectRuns({
      {{"setting", "get", "Tests\\Tool", "Missing"}, 0, "\n"},
      {{"setting", "set", "Tests\\Tool", "Name", "Αθήνα"}, 0, ""},
      {{"setting", "get", "Tests\\Tool", "Name"}, 0, "Αθήνα\n"},
  });
}

TEST(EventCommand, WritesEvents) {
  ExpectRuns({
      {{"event", "information", "7", "A test of zentavo"}, 0, ""},
      {{"event", "16", "-7", "A test of zentavo"}, 0, ""},
  });
  EXPECT_EQ(RunTool({"event", "loud", "7", "m"}).exit_code, 2);
  EXPECT_EQ(RunTool({"event", "65536", "7", "m"}).exit_code, 2);
}

}  // namespace
}  // namespace zentavo::testing
