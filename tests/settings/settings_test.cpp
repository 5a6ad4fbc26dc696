#include "zentavo/settings/settings.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/error_of.h"
#include "tests/support/program_run.h"
#include "tests/support/user_settings.h"
#include "zentavo/framework/number_text.h"
#include "zentavo/platform/directories.h"
#include "zentavo/platform/process.h"
#include "zentavo/settings/settings_file.h"

namespace zentavo {
namespace {

using testing::OwnUserSettings;
using testing::ReadBytes;
using testing::TemporaryFolder;
using testing::WriteBytes;

TEST(Settings, AreKeptBySectionAndName) {
  const OwnUserSettings own;
  EXPECT_EQ(ReadRegistryString(u"Tests\\Deep", u"Name"), u"");
  EXPECT_EQ(ReadRegistryString(u"Tests\\Deep", u"Name"), u"");  // of a section that is there now
  WriteRegistryString(u"Tests\\Deep", u"Name", u"Αθήνα");
  WriteRegistryString(u"Tests", u"Name", u"other");
  WriteRegistryString(u"", u"Name", u"top");
  WriteRegistryString(u"Tests", u"", u"default");
  EXPECT_EQ(ReadRegistryString(u"tests\\DEEP", u"NAME"), u"Αθήνα");
  EXPECT_EQ(ReadRegistryString(u"\\Tests\\\\Deep\\", u"Name"), u"Αθήνα");  // no empty levels
  EXPECT_EQ(ReadRegistryString(u"Tests", u"Name"), u"other");
  EXPECT_EQ(ReadRegistryString(u"", u"Name"), u"top");
  EXPECT_EQ(ReadRegistryString(u"Tests", u""), u"default");
  EXPECT_EQ(ReadRegistryString(u"Tests", u"Missing"), u"");
}

TEST(Settings, KeepEveryText) {
  const OwnUserSettings own;
  const String long_text(3000, u'x');
  for (const StringView text :
       {StringView(), StringView(u" blanks "), StringView(u"two\r\nlines\t"), StringView(u"a=b"),
        StringView(u"[a]"), StringView(u";c"), StringView(u"%0041 24% %zz"), StringView(u"C:\\x"),
        StringView(u"\""), StringView(u"\xFEFF"), StringView(u"\x80\xFF"), StringView(u"日"),
        StringView(long_text), StringView(u"\U0001F600")}) {
    WriteRegistryString(u"T", u"Value", text);
    EXPECT_EQ(ReadRegistryString(u"T", u"Value"), text) << ToUtf8(text);
    if (text.size() > 255 || text.empty()) continue;
    const String value = String(u"named ").append(text);
    WriteRegistryString(u"T", text, value);
    EXPECT_EQ(ReadRegistryString(u"T", text), value) << ToUtf8(text);
  }
  WriteRegistryString(u" [s] \r\n%", u"Name", u"v");
  EXPECT_EQ(ReadRegistryString(u" [s] \r\n%", u"Name"), u"v");
  EXPECT_EQ(ReadRegistryString(u"T", u"a=b"), u"named a=b");  // all are still there
}

TEST(Settings, TextsEndAtTheirFirstZero) {
  const OwnUserSettings own;
  WriteRegistryString(StringView(u"T\0x", 3), StringView(u"N\0x", 3), StringView(u"V\0x", 3));
  EXPECT_EQ(ReadRegistryString(u"T", u"N"), u"V");
}

TEST(Settings, SectionsThatCannotBeAreTheRoot) {
  const OwnUserSettings own;
  const String too_long(256, u'x');
  EXPECT_EQ(ReadRegistryString(too_long, u"Name"), u"");
  WriteRegistryString(u"a\\" + too_long, u"Name", u"root");
  EXPECT_EQ(ReadRegistryString(too_long, u"Name"), u"root");
  EXPECT_EQ(ReadRegistryString(u"", u"Name"), u"");
  WriteRegistryString(too_long.substr(1), u"Name", u"own");
  EXPECT_EQ(ReadRegistryString(too_long.substr(1), u"Name"), u"own");
}

// The file
// ------------------------------------------------------------------------------------------

String Numbered(StringView name, int number) {
  return String(name).append(IntToStr(number));
}

class SettingsFileTest : public ::testing::Test {
 protected:
  String Folder() const { return folder_.Path() + platform::PathSeparator(); }
  std::string Text() const { return ReadBytes(file_.FileName()); }
  void Damage(std::string_view bytes) const { WriteBytes(file_.FileName(), bytes); }
  std::string Kept(StringView number) const {
    return ReadBytes(file_.FileName() + u".kept-" + String(number));
  }

  TemporaryFolder folder_;
  SettingsFile file_{Folder()};
};

TEST_F(SettingsFileTest, ReadingCreatesTheSection) {
  EXPECT_EQ(file_.Read(u"A\\B", u"x"), u"");
  EXPECT_EQ(Text().substr(0, 5), "[A\\B]");
  const std::string before = Text();
  file_.Read(u"a\\b", u"x");
  EXPECT_EQ(Text(), before);
}

TEST_F(SettingsFileTest, WhatIsNoSettingIsKeptInACopy) {
  file_.Write(u"S", u"a", u"1");
  for (const std::string_view damaged :
       {"lost=1\n[S]\na=1\n", "[S]\n;comment\na=1\n", "[S]\na=1\nb=\xFF\n"}) {
    std::filesystem::remove(file_.FileName() + u".kept-1");
    Damage(damaged);
    EXPECT_EQ(file_.Read(u"S", u"a"), u"1");
    EXPECT_EQ(Text(), damaged);  // reading what is there changes nothing
    file_.Write(u"S", u"c", u"3");
    EXPECT_EQ(Kept(u"1"), damaged);
    EXPECT_EQ(file_.Read(u"S", u"a"), u"1");
    EXPECT_EQ(file_.Read(u"S", u"c"), u"3");
  }
  Damage("lost=2\n[S]\n");
  file_.Write(u"S", u"c", u"3");
  EXPECT_EQ(Kept(u"2"), "lost=2\n[S]\n");
}

TEST_F(SettingsFileTest, HandWrittenFilesAreRead) {
  std::filesystem::create_directory(folder_ / u"zentavo");
  Damage("\xEF\xBB\xBF\n[ S ]\n\n a = 1 \nline\n[S]\na=2\n[open\n");
  EXPECT_EQ(file_.Read(u"S", u"a"), u"1");
  file_.Write(u"S", u"b", u"3");
  EXPECT_FALSE(std::filesystem::exists(file_.FileName() + u".kept-1"));
  EXPECT_NE(Text().find("[open"), std::string::npos);
}

TEST_F(SettingsFileTest, FilesThatCannotBeWrittenAreStillRead) {
  file_.Write(std::nullopt, u"a", u"root");
  file_.Write(u"S", u"a", u"1");
  std::filesystem::remove(file_.FileName() + u".lock");
  std::filesystem::create_directory(file_.FileName() + u".lock");
  const std::string before = Text();
  EXPECT_EQ(file_.Read(u"S", u"a"), u"1");
  EXPECT_EQ(file_.Read(u"T", u"a"), u"root");  // T cannot be created
  EXPECT_THROW(file_.Write(u"S", u"a", u"2"), EFCreateError);
  EXPECT_EQ(Text(), before);
}

TEST_F(SettingsFileTest, FailuresOfWritingHaveTheirText) {
  if (platform::PathSeparator() == u'\\') GTEST_SKIP() << "settings are in the registry";
  const OwnUserSettings own;
  WriteRegistryString(u"S", u"a", u"1");
  const String file = SettingsFile(FromUtf8(std::getenv("XDG_CONFIG_HOME")) + u"/").FileName();
  std::filesystem::remove(file);
  std::filesystem::create_directory(file);
  EXPECT_EQ(ReadRegistryString(u"S", u"a"), u"");
  const std::string error =
      testing::ErrorOf<ERegistryException>([] { WriteRegistryString(u"S", u"a", u"2"); });
  EXPECT_TRUE(error.starts_with("Failed to set data for 'a'. Cannot ")) << error;
}

TEST_F(SettingsFileTest, WritersAtOnceLoseNothing) {
  std::filesystem::path helper = platform::ProgramPath();
  helper.replace_filename("settings_writer_helper" + helper.extension().string());
  std::vector<std::thread> writers;
  for (const char* name : {"p", "q"}) {
    writers.emplace_back([&, name] {
      EXPECT_EQ(testing::RunProgram(helper, {ToUtf8(Folder()), name}).exit_code, 0);
    });
  }
  writers.emplace_back([&] {
    for (int i = 0; i < 30; ++i) file_.Write(u"Shared", Numbered(u"t", i), u"t");
  });
  for (std::thread& writer : writers) writer.join();
  for (int i = 0; i < 30; ++i) {
    for (const StringView name : {u"p", u"q", u"t"}) {
      EXPECT_EQ(file_.Read(u"Shared", Numbered(name, i)), name);
    }
  }
}

}  // namespace
}  // namespace zentavo
