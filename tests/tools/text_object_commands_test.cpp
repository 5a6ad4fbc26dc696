#include <gtest/gtest.h>

#include <string>

#include "tests/support/user_settings.h"
#include "tests/tools/tool_run.h"
#include "zentavo/foundation/errors.h"
#include "zentavo/framework/text.h"
#include "zentavo/textout/spell.h"

namespace zentavo::testing {
namespace {

TEST(TextCommand, MakesHtmlAndAsksCodePages) {
  ExpectRuns({"text"}, "text words",
             {{{"html", "Hi\n<Open$OPEN 1>"},
               "<html>\r\n<p>Hi</p>\r\n<p><a href=\"xcmd:OPEN 1\">Open</a></p>\r\n</html>\n"},
              {{"fix-html", "External()"}, "_external()\n"},
              {{"fits", "Αθήνα", "1253"}, "yes\n"},
              {{"fits", "Αθήνα", "1252"}, "no\n"},
              {{"fits", "a", "12345"}, "Unknown code page 12345", 1},
              {{"words", "x", "EN"}, "'x' is not a number", 2}});
}

TEST(TextCommand, PutsAmountsInWordsAsTheLibraryDoes) {
  ToolCase expected{{"words", "12.5", "EN"}, {}};
  try {
    expected.printed = ToUtf8(Spell(12.5, u"", u"EN")) + "\n";
  } catch (const EZentavoError& error) {  // systems without the words
    expected.printed = error.what();
    expected.exit_code = 1;
  }
  ExpectRuns({"text"}, "text words", {expected});
}

TEST(HtmlCommand, PacksListsAndUnpacks) {
  const TemporaryFolder folder;
  const std::string content = ToUtf8(folder / u"content");
  const std::string object = ToUtf8(folder / u"object");
  WriteBytes(PathOf(content), std::string("<p>\0 a long content</p>", 23));
  ExpectRuns({"html"}, "html pack",
             {{{"pack", object, "body=" + content, "κεφαλή=" + content}, ""},
              {{"list", object}, "body\t23\nκεφαλή\t23\n"},
              {{"get", object, "κεφαλή"}, ReadBytes(PathOf(content))},
              {{"get", object, "other"}, "There is no part 'other'", 1},
              {{"pack", object, "body"}, "'body' is not NAME=VALUE", 2}});
  const std::string before = ReadBytes(PathOf(object));
  EXPECT_EQ(RunTool({"html", "pack", object, "body=" + content + "x"}).exit_code, 1);
  EXPECT_EQ(ReadBytes(PathOf(object)), before);
  EXPECT_EQ(RunTool({"html", "list", "-"}, "abc").output, "");
}

TEST(SettingCommand, KeepsSettings) {
  const OwnUserSettings own;
  ExpectRuns({"setting"}, "setting",
             {{{"get", "Tests\\Tool", "Missing"}, "\n"},
              {{"set", "Tests\\Tool", "Name", "Αθήνα"}, ""},
              {{"get", "Tests\\Tool", "Name"}, "Αθήνα\n"}});
}

TEST(EventCommand, WritesEvents) {
  ExpectRuns(
      {"event"}, "event",
      {{{"information", "7", "A test of zentavo"}, ""}, {{"16", "-7", "A test of zentavo"}, ""}});
  EXPECT_EQ(RunTool({"event", "loud", "7", "m"}).exit_code, 2);
  EXPECT_EQ(RunTool({"event", "65536", "7", "m"}).exit_code, 2);
}

}  // namespace
}  // namespace zentavo::testing
