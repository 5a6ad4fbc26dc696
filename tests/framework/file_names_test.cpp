#include "zentavo/framework/file_names.h"

#include <gtest/gtest.h>

#include "tests/support/error_of.h"
#include "tests/support/temporary_folder.h"
#include "zentavo/platform/directories.h"

namespace zentavo {
namespace {

TEST(FileNames, FallApartIntoPathNameAndExtension) {
  struct Row {
    StringView name, path, file, extension, changed;
  };
  for (const Row& row : {Row{u"/a/b.c/d.e.txt", u"/a/b.c/", u"d.e.txt", u".txt", u"/a/b.c/d.e.x"},
                         Row{u"name", u"", u"name", u"", u"name.x"},
                         Row{u".profile", u"", u".profile", u".profile", u".x"},
                         Row{u"a/", u"a/", u"", u"", u"a/.x"}, Row{u"", u"", u"", u"", u".x"}}) {
    EXPECT_EQ(ExtractFilePath(row.name), row.path);
    EXPECT_EQ(ExtractFileName(row.name), row.file);
    EXPECT_EQ(ExtractFileExt(row.name), row.extension);
    EXPECT_EQ(ChangeFileExt(row.name, u".x"), row.changed);
  }
}

TEST(FileNames, TrailingDelimiterComesAndGoes) {
  const String separator(1, platform::PathSeparator());
  EXPECT_EQ(IncludeTrailingPathDelimiter(u"a"), u"a" + separator);
  EXPECT_EQ(IncludeTrailingPathDelimiter(u"a/"), u"a/");
  EXPECT_EQ(IncludeTrailingPathDelimiter(u""), separator);
  EXPECT_EQ(ExcludeTrailingPathDelimiter(u"a" + separator), u"a");
  EXPECT_EQ(ExcludeTrailingPathDelimiter(u""), u"");
}

TEST(ForceDirectories, CreatesAllMissingParents) {
  const testing::TemporaryFolder folder;
  const String deep = folder / u"α/β/γ";
  EXPECT_FALSE(DirectoryExists(deep));
  EXPECT_TRUE(ForceDirectories(deep + u"/"));
  EXPECT_TRUE(DirectoryExists(deep));
  EXPECT_FALSE(FileExists(deep));
  EXPECT_TRUE(ForceDirectories(deep));
  EXPECT_TRUE(ForceDirectories(folder / u"α//δ"));
  EXPECT_EQ(testing::ErrorOf<EInOutError>([] { ForceDirectories(u""); }),
            "Unable to create directory");
}

}  // namespace
}  // namespace zentavo
