#include "zentavo/foundation/helper_files.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>

#include "support/temporary_folder.h"
#include "zentavo/foundation/convert.h"
#include "zentavo/foundation/file_access.h"
#include "zentavo/foundation/helper_times.h"
#include "zentavo/foundation/host.h"
#include "zentavo/framework/exception.h"
#include "zentavo/framework/file_names.h"
#include "zentavo/framework/memory_data_set.h"
#include "zentavo/platform/clock.h"
#include "zentavo/platform/directories.h"

namespace zentavo {
namespace {

TEST(WriteToFile, CreatesAppendsAndEmpties) {
  const testing::TemporaryFolder folder;
  const String name = folder / u"Αρχείο.txt";
  WriteToFile(name, "one", 3, true);
  WriteToFile(name, "two", 3, true);
  EXPECT_EQ(ReadAllTextAnsi(name), "onetwo");
  WriteText(name, u"", false);  // an empty text does not touch the file
  EXPECT_EQ(ReadAllTextAnsi(name, true), "onetwo");
  WriteText(name, u"x", false);
  EXPECT_EQ(ReadAllText(name), u"x");
  WriteToFile(name, nullptr, 0, false);
  EXPECT_EQ(ReadAllTextAnsi(name), "");
  WriteText((folder / u"none"), u"", true);
  EXPECT_FALSE(FileExists(folder / u"none"));
}

TEST(Lines, AreReadAndAppended) {
  const testing::TemporaryFolder folder;
  const String name = folder / u"lines";
  TStringList lines;
  lines.SetCommaText(u"a,b");
  AppendLines(name, lines);
  AppendLines(name, lines);
  EXPECT_EQ(ReadAllLines(name)->CommaText(), u"a,b,a,b");
}

TEST(Memory, PassesBetweenStreamsTextsAndVariants) {
  const testing::TemporaryFolder folder;
  const std::string bytes("a\0\xFFz", 4);
  const auto memory = StringToMemory(bytes);
  memory->SetPosition(2);
  EXPECT_EQ(MemoryToString(*memory), bytes);  // all of it, wherever the position is
  const Variant variant = MemoryToVariant(*memory);
  ASSERT_EQ(variant.Kind(), VariantKind::kByteArray);
  EXPECT_EQ(std::memcmp(variant.ByteArrayValue().data(), bytes.data(), 4), 0);
  EXPECT_TRUE(MemoryToVariant(*StringToMemory("")).IsNull());
  const String name = folder / u"bytes";
  WriteToFile(name, bytes.data(), 4, false);
  const auto loaded = CreateMemoryStream(name);
  EXPECT_EQ(loaded->Position(), 0);
  EXPECT_EQ(MemoryToString(*loaded), bytes);
}

TEST(ReadAllText, RaisesForAMissingFile) {
  const testing::TemporaryFolder folder;
  EXPECT_THROW(ReadAllTextAnsi(folder / u"none"), EFOpenError);
  EXPECT_THROW(WriteToFile((folder / u"no") + platform::PathSeparator() + u"file", "x", 1, true),
               EFCreateError);
}

TEST(AnsiText, ConvertsVariantsAndFields) {
  EXPECT_EQ(VarToAnsiStr(Variant::Null()), "");
  EXPECT_EQ(VarToAnsiStr(12), "12");
  TMemoryDataSet data(u"T");
  TField& field = data.AddField(u"F", TFieldType::ftString, 20);
  data.Open();
  data.Append();
  SetAsAnsiString(field, "text");
  EXPECT_EQ(GetAsAnsiString(field), "text");
  field.Clear();
  EXPECT_EQ(GetAsAnsiString(field), "");
}

TEST(ForceDirFullAccess, GrantsTheFirstDirectoryOnly) {
  const testing::TemporaryFolder folder;
  const String separator(1, platform::PathSeparator());
  const String first = (folder / u"a") + separator + u"b";
  EXPECT_TRUE(ForceDirFullAccess(first));
  EXPECT_TRUE(ForceDirFullAccess(folder / u"c"));
  EXPECT_TRUE(DirectoryExists(folder / u"c"));
  if (platform::PathSeparator() == u'/') {
    using std::filesystem::perms;
    const auto open_to_all = [](const String& path) {
      return (std::filesystem::status(path).permissions() & perms::others_write) != perms::none;
    };
    EXPECT_TRUE(open_to_all(first));
    EXPECT_FALSE(open_to_all(folder / u"c"));
  }
  WriteText((folder / u"file"), u"x", false);
  EXPECT_FALSE(ForceDirFullAccess((folder / u"file") + separator + u"d"));
}

TEST(Host, KnowsItsProgramFolder) {
  const String folder = GetProgramDir();
  EXPECT_TRUE(platform::IsPathDelimiter(folder.back()));
  EXPECT_TRUE(DirectoryExists(folder));
  EXPECT_FALSE(ExecuteProgram(folder + u"no such program", u"", 5, true));
}

TEST(Times, AreMeasuredOrSaidToBeUnknown) {
  volatile double work = 1;
  const std::uint32_t thread = platform::CurrentThreadNumber();
  const std::int64_t before = XGetThreadTime(thread);
  // The clock may tick as slowly as every 16 ms.
  while (XGetThreadTime(thread) == before) work = work * 1.0001;
  EXPECT_GT(XGetThreadTime(thread), before);
  EXPECT_GE(XGetCPUThreadCycles(), -1);
  XGetTotalCPU();
  EXPECT_LE(XGetTotalCPU(), 100);
}

}  // namespace
}  // namespace zentavo
