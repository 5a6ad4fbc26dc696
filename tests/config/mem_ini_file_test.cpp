#include "zentavo/config/mem_ini_file.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <iterator>
#include <string>
#include <string_view>
#include <thread>

#include "tests/support/error_of.h"
#include "tests/support/program_run.h"
#include "tests/support/temporary_folder.h"
#include "zentavo/framework/exception.h"
#include "zentavo/framework/format_settings.h"
#include "zentavo/framework/stream.h"
#include "zentavo/platform/process.h"

namespace zentavo {
namespace {

using testing::ReadBytes;
using testing::TemporaryFolder;
using testing::WriteBytes;

std::ptrdiff_t FileCount(const TemporaryFolder& folder) {
  return std::distance(std::filesystem::directory_iterator(folder.Path()), {});
}

void SetText(TXMemIniFile& ini, StringView text) {
  TStringList lines;
  lines.SetText(text);
  ini.SetStrings(lines);
}

// The lines of `list` between '|'.
String Joined(const TStringList& list) {
  String text;
  for (std::int32_t i = 0; i < list.Count(); ++i) text.append(i == 0 ? u"" : u"|").append(list[i]);
  return text;
}

String TextForm(const TXMemIniFile& ini) {
  TStringList lines;
  ini.GetStrings(lines);
  return Joined(lines);
}

TEST(TXMemIniFile, NormalisesWhatItReads) {
  struct Row {
    StringView text, form;
  };
  for (const Row& row : {Row{u"", u""}, Row{u"k=v\n[s]\n", u"[s]|"},
                         Row{u"[s]\n  key  =  some value  ", u"[s]|key=some value|"},
                         Row{u"[s]\r\n;c\r\r\n a \nb=1=2\n", u"[s]|a|b=1=2|"},
                         Row{u" [ s ] \n[t]x\n[\n", u"[s]|[t]x|[|"},
                         Row{u"[s]\nk=1\n[t]\n[S]\nk=2", u"[s]|k=1||[t]||[S]|k=2|"},
                         Row{u"[]\n=v\n=", u"[]|=v|=|"}}) {
    TXMemIniFile ini(u"");
    SetText(ini, row.text);
    EXPECT_EQ(TextForm(ini), row.form);
    EXPECT_TRUE(ini.Modified());
  }
}

TEST(TXMemIniFile, ReadsAndWritesInPlace) {
  TXMemIniFile ini(u"");
  SetText(ini, u"[Section]\na=1\nkey=x=y\nplain\n[section]\nkey=second");
  ini.SetModified(false);
  EXPECT_EQ(ini.ReadString(u"SECTION", u"KEY", u""), u"x=y");
  EXPECT_EQ(ini.ReadString(u"Section", u"plain", u"none"), u"none");
  ini.EraseSection(u"absent");
  ini.DeleteKey(u"Section", u"plain");
  EXPECT_FALSE(ini.Modified());
  ini.WriteString(u"section", u"A", u"2");
  EXPECT_TRUE(ini.Modified());
  ini.WriteString(u"new", u"k", u"");
  ini.DeleteKey(u"Section", u"Key");
  EXPECT_EQ(TextForm(ini), u"[Section]|A=2|plain||[section]|key=second||[new]|k=|");
  ini.EraseSection(u"Section");
  EXPECT_EQ(ini.ReadString(u"Section", u"key", u""), u"second");
  ini.SetCaseSensitive(true);
  EXPECT_EQ(ini.ReadString(u"Section", u"key", u"none"), u"none");
  ini.AddSection(u"x").Add(u"K=1");
  EXPECT_EQ(ini.ReadString(u"x", u"k", u"none"), u"none");
}

TEST(TXMemIniFile, ListsSectionsAndNames) {
  TXMemIniFile ini(u"");
  SetText(ini, u"[a]\nk=1\nplain\n[A\\b]\n[a\\b\\c]\n[ab]\n[a\\]");
  TStringList list;
  list.Add(u"left over");
  ini.ReadSection(u"a", list);
  EXPECT_EQ(Joined(list), u"k|plain");
  ini.ReadSectionValues(u"a", list);
  EXPECT_EQ(Joined(list), u"k=1|plain");
  ini.ReadSections(list);
  EXPECT_EQ(Joined(list), u"a|A\\b|a\\b\\c|ab|a\\");
  ini.ReadSections(u"", list);
  EXPECT_EQ(list.Count(), 5);
  ini.ReadSections(u"a", list);
  EXPECT_EQ(Joined(list), u"A\\b|a\\b\\c");
  ini.ReadSubSections(u"A", list);
  EXPECT_EQ(Joined(list), u"b");
  ini.ReadSubSections(u"a", list, true);
  EXPECT_EQ(Joined(list), u"b|b\\c");
  ini.ReadSectionValues(u"absent", list);
  EXPECT_EQ(list.Count(), 0);
  EXPECT_FALSE(ini.SectionExists(u"ab"));  // a header alone counts as absent
  EXPECT_TRUE(ini.SectionExists(u"a"));
  EXPECT_TRUE(ini.ValueExists(u"a", u"PLAIN"));
}

TEST(TXCustomIniFile, ReadsIntegers) {
  struct Row {
    StringView text;
    std::int32_t value;
  };
  TXMemIniFile ini(u"");
  for (const Row& row :
       {Row{u"0x1F", 31}, Row{u"0X1f", 31}, Row{u"$10", 16}, Row{u"-5", -5}, Row{u"x", 9},
        Row{u"0x", 9}, Row{u"", 9}, Row{u"1.5", 9}, Row{u"2147483648", 9}}) {
    ini.WriteString(u"s", u"k", row.text);
    EXPECT_EQ(ini.ReadInteger(u"s", u"k", 9), row.value);
  }
  ini.WriteInteger(u"s", u"k", -7);
  EXPECT_TRUE(ini.ReadBool(u"s", u"k", false));
  ini.WriteBool(u"s", u"k", false);
  EXPECT_EQ(ini.ReadString(u"s", u"k", u""), u"0");
  EXPECT_TRUE(ini.ReadBool(u"s", u"absent", true));
}

TEST(TXCustomIniFile, WritesTypedValuesByTheProcessSettings) {
  const TFormatSettings saved = ProcessFormatSettings();
  ProcessFormatSettings() = TFormatSettings();
  ProcessFormatSettings().DecimalSeparator = u',';
  TXMemIniFile ini(u"");
  const TDateTime moment = EncodeDate(2024, 2, 29) + EncodeTime(13, 5, 0, 0);
  ini.WriteFloat(u"s", u"float", 1.5);
  ini.WriteDate(u"s", u"date", moment);
  ini.WriteTime(u"s", u"time", moment);
  ini.WriteDateTime(u"s", u"both", moment);
  EXPECT_EQ(TextForm(ini),
            u"[s]|float=1,5|date=2024-02-29|time=13:05:00|both=2024-02-29 13:05:00|");
  EXPECT_EQ(ini.ReadFloat(u"s", u"float", 0), 1.5);
  EXPECT_EQ(ini.ReadDate(u"s", u"date", 0), EncodeDate(2024, 2, 29));
  EXPECT_EQ(ini.ReadTime(u"s", u"time", 0), EncodeTime(13, 5, 0, 0));
  EXPECT_EQ(ini.ReadDateTime(u"s", u"both", 0), moment);
  EXPECT_EQ(ini.ReadFloat(u"s", u"date", 4), 4);
  EXPECT_EQ(ini.ReadDate(u"s", u"absent", 4), 4);
  ProcessFormatSettings() = saved;
}

TEST(TXCustomIniFile, KeepsBytesAsHexadecimal) {
  TXMemIniFile ini(u"");
  TMemoryStream bytes;
  bytes.WriteBuffer("skip\x00\x7F\xFF", 7);
  bytes.SetPosition(4);
  ini.WriteBinaryStream(u"s", u"k", bytes);
  EXPECT_EQ(ini.ReadString(u"s", u"k", u""), u"007FFF");
  TMemoryStream read;
  EXPECT_EQ(ini.ReadBinaryStream(u"s", u"k", read), 3);
  EXPECT_EQ(read.Size(), 3);
  ini.WriteString(u"s", u"k", u"0a0G11");
  EXPECT_EQ(ini.ReadBinaryStream(u"s", u"k", read), 1);
}

TEST(TXMemIniFile, KeepsTheEncodingOfTheFile) {
  using namespace std::string_view_literals;
  const std::string_view rows[] = {
      "[s]\nk=\xCE\xB1\n\n"sv,
      "\xEF\xBB\xBF[s]\nk=\xCE\xB1\n\n"sv,
      "\xFF\xFE[\0s\0]\0\n\0k\0=\0\xB1\x03\n\0\n\0"sv,
      "\xFE\xFF\0[\0s\0]\0\n\0k\0=\x03\xB1\0\n\0\n"sv,
  };
  const TemporaryFolder folder;
  for (const std::string_view bytes : rows) {
    WriteBytes(folder / u"file.ini", bytes);
    TXMemIniFile ini(folder / u"file.ini");
    EXPECT_EQ(ini.ReadString(u"s", u"k", u""), u"\u03B1");
    EXPECT_FALSE(ini.Modified());
    ini.UpdateFile();
    std::string written = ReadBytes(folder / u"file.ini");
    std::erase(written, '\r');  // what Windows writes before a line feed
    if (bytes.find('\0') == bytes.npos || PlatformLineBreak() == u"\n") {
      EXPECT_EQ(written, bytes);
    }
    EXPECT_EQ(TXMemIniFile(folder / u"file.ini").ReadString(u"s", u"k", u""), u"\u03B1");
  }
}

TEST(TXMemIniFile, WritesTheEncodingItIsGiven) {
  const TemporaryFolder folder;
  TXMemIniFile ini(folder / u"file.ini", TEncoding(1253));
  ini.WriteString(u"s", u"k", u"\u03B1");
  ini.UpdateFile();
  EXPECT_EQ(
      ReadBytes(folder / u"file.ini").substr(ReadBytes(folder / u"file.ini").find('=') + 1, 1),
      "\xE1");
  ini.LoadValues();
  EXPECT_EQ(ini.ReadString(u"s", u"k", u""), u"\u03B1");
  ini.SetEncoding(TEncoding::Utf16BE());
  ini.UpdateFile();
  EXPECT_TRUE(ReadBytes(folder / u"file.ini").starts_with("\xFE\xFF"));
}

TEST(TXMemIniFile, RefusesToSaveOverTextItCouldNotRead) {
  const TemporaryFolder folder;
  WriteBytes(folder / u"file.ini", "[s]\nk=\xFF\n");
  TXMemIniFile ini(folder / u"file.ini", TEncoding::Utf8());
  EXPECT_EQ(ini.ReadString(u"s", u"k", u""), u"\uFFFD");
  EXPECT_EQ(testing::ErrorOf<EWriteError>([&] { ini.UpdateFile(); }),
            testing::Quoted(ToUtf8(folder / u"file.ini")) + " is not valid text in its encoding");
  EXPECT_EQ(ReadBytes(folder / u"file.ini"), "[s]\nk=\xFF\n");
  ini.Rename(folder / u"copy.ini", false);
  ini.UpdateFile();
  EXPECT_EQ(FileCount(folder), 2);
}

TEST(TXMemIniFile, SavesAtItsEndWithAutoSaveAlone) {
  const TemporaryFolder folder;
  for (const bool auto_save : {false, true}) {
    TXMemIniFile ini(folder / u"file.ini");
    ini.SetAutoSave(auto_save);
    ini.WriteString(u"s", u"k", u"v");
    EXPECT_EQ(FileCount(folder), 0);
  }
  EXPECT_EQ(TXMemIniFile(folder / u"file.ini").ReadString(u"s", u"k", u""), u"v");
}

TEST(TXMemIniFile, RenamesWithAndWithoutReading) {
  const TemporaryFolder folder;
  WriteBytes(folder / u"old.ini", "[s]\nk=old\n");
  WriteBytes(folder / u"new.ini", "[s]\nk=new\n");
  TXMemIniFile ini(folder / u"old.ini");
  ini.Rename(folder / u"old.ini", false);
  EXPECT_FALSE(ini.Modified());
  ini.Rename(folder / u"new.ini", false);
  EXPECT_TRUE(ini.Modified());
  EXPECT_EQ(ini.ReadString(u"s", u"k", u""), u"old");
  ini.Rename(folder / u"new.ini", true);
  EXPECT_FALSE(ini.Modified());
  EXPECT_EQ(ini.ReadString(u"s", u"k", u""), u"new");
  ini.Rename(folder / u"missing/new.ini", true);
  EXPECT_EQ(TextForm(ini), u"");
  EXPECT_THROW(ini.UpdateFile(), EFCreateError);
}

// Runs the helper, which saves the file again and again with all values the same.
void RunSaver(const String& file, const char* value) {
  const std::filesystem::path self = platform::ProgramPath();
  std::filesystem::path saver = self.parent_path() / "ini_saver_helper";
  saver += self.extension();
  const testing::ProgramRun run = testing::RunProgram(saver, {ToUtf8(file), value});
  EXPECT_EQ(run.exit_code, 0) << run.error;
}

// What the file says in all of its 1,000 lines, the empty text when they differ.
String SingleValue(const String& file) {
  TXMemIniFile ini(file);
  TStringList values;
  ini.ReadSectionValues(u"s", values);
  EXPECT_EQ(values.Count(), 1000);
  const String first = values.ValueFromIndex(0);
  for (std::int32_t i = 0; i < values.Count(); ++i) {
    if (values.ValueFromIndex(i) != first) return {};
  }
  return first;
}

TEST(TXMemIniFile, ProcessesThatSaveAtOnceLeaveOneWholeFile) {
  const TemporaryFolder folder;
  const String file = (folder / u"file.ini");
  RunSaver(file, "first");
  std::thread one([&] { RunSaver(file, "one"); });
  std::thread two([&] { RunSaver(file, "another value"); });
  for (int i = 0; i < 50; ++i) EXPECT_NE(SingleValue(file), u"");
  one.join();
  two.join();
  const String value = SingleValue(file);
  EXPECT_TRUE(value == u"one" || value == u"another value");
  for (const auto& entry : std::filesystem::directory_iterator(folder.Path())) {
    EXPECT_EQ(entry.path().u16string(), file);  // nothing is left beside it
  }
}

}  // namespace
}  // namespace zentavo
