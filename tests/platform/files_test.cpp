#include "zentavo/platform/files.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "support/temporary_folder.h"

namespace zentavo::platform {
namespace {

using testing::TemporaryFolder;
using enum FileAccess;
using enum FileCreation;

std::span<const std::byte> Bytes(std::string_view text) {
  return std::as_bytes(std::span(text));
}

void WriteAll(std::u16string_view path, std::string_view text) {
  File file;
  ASSERT_EQ(file.Open(path, kWrite, FileSharing::kNone, kCreateOrTruncate), 0U);
  std::size_t done = 0;
  ASSERT_EQ(file.Write(Bytes(text), done), 0U);
  ASSERT_EQ(done, text.size());
}

std::string ReadAll(std::u16string_view path) {
  File file;
  std::string text(100, ' ');
  std::size_t done = 0;
  if (file.Open(path, kRead, FileSharing::kReadWrite, kOpenExisting) != 0) return "(not open)";
  if (file.Read(std::as_writable_bytes(std::span(text)), done) != 0) return "(not read)";
  return text.substr(0, done);
}

TEST(File, CreationModes) {
  struct Row {
    FileCreation creation;
    const char *over_old, *over_nothing;
  };
  for (const Row& row : {Row{kOpenExisting, "old", "(refused)"}, Row{kCreateOrTruncate, "", ""},
                         Row{kOpenOrCreate, "old", ""}, Row{kCreateNew, "(refused)", ""}}) {
    for (const bool exists : {true, false}) {
      const TemporaryFolder folder;
      const std::u16string path = folder / u"f";
      if (exists) WriteAll(path, "old");
      File file;
      const bool opens = file.Open(path, kReadWrite, FileSharing::kNone, row.creation) == 0;
      file.Close();
      const std::string found = opens ? ReadAll(path) : "(refused)";
      EXPECT_EQ(found, exists ? row.over_old : row.over_nothing) << static_cast<int>(row.creation);
    }
  }
}

TEST(File, SharingKeepsOpenersApart) {
  constexpr struct {
    FileAccess first;
    FileSharing first_sharing;
    FileAccess second;
    FileSharing second_sharing;
    bool opens;
  } kRows[] = {
      {kRead, FileSharing::kNone, kRead, FileSharing::kRead, false},
      {kReadWrite, FileSharing::kNone, kWrite, FileSharing::kReadWrite, false},
      {kRead, FileSharing::kRead, kRead, FileSharing::kRead, true},
      {kRead, FileSharing::kRead, kWrite, FileSharing::kRead, false},
      {kWrite, FileSharing::kRead, kWrite, FileSharing::kRead, false},
      {kWrite, FileSharing::kRead, kRead, FileSharing::kReadWrite, true},
      {kWrite, FileSharing::kReadWrite, kWrite, FileSharing::kReadWrite, true},
      {kWrite, FileSharing::kReadWrite, kRead, FileSharing::kNone, false},
  };
  const TemporaryFolder folder;
  const std::u16string path = folder / u"f";
  WriteAll(path, "x");
  for (const auto& row : kRows) {
    SCOPED_TRACE(&row - kRows);
    File first;
    File second;
    ASSERT_EQ(first.Open(path, row.first, row.first_sharing, kOpenExisting), 0U);
    EXPECT_EQ(second.Open(path, row.second, row.second_sharing, kOpenExisting) == 0, row.opens);
  }
}

TEST(File, RefusedCreationKeepsTheContent) {
  const TemporaryFolder folder;
  const std::u16string path = folder / u"f";
  WriteAll(path, "kept");
  File holder;
  File second;
  ASSERT_EQ(holder.Open(path, kRead, FileSharing::kRead, kOpenExisting), 0U);
  EXPECT_NE(second.Open(path, kWrite, FileSharing::kNone, kCreateOrTruncate), 0U);
  EXPECT_EQ(ReadAll(path), "kept");
}

TEST(File, DirectoriesAndPathsWithAZeroAreRefused) {
  const TemporaryFolder folder;
  WriteAll(folder / u"f", "x");
  const std::u16string zero = (folder / u"f") + std::u16string(u"\0.txt", 5);
  for (const std::u16string& path : {folder.Path(), zero, std::u16string()}) {
    for (const FileAccess access : {kRead, kWrite, kReadWrite}) {
      File file;
      EXPECT_NE(file.Open(path, access, FileSharing::kReadWrite, kOpenOrCreate), 0U);
    }
    EXPECT_FALSE(FileExists(path));
    EXPECT_NE(RemoveFile(path), 0U);
  }
  EXPECT_TRUE(FileExists(folder / u"f"));
}

TEST(File, MovesTheOwnership) {
  const TemporaryFolder folder;
  File a;
  File b;
  ASSERT_EQ(a.Open(folder / u"a", kWrite, FileSharing::kNone, kCreateNew), 0U);
  ASSERT_EQ(b.Open(folder / u"b", kWrite, FileSharing::kNone, kCreateNew), 0U);
  File& alias = a;
  a = std::move(alias);
  EXPECT_TRUE(a.IsOpen());
  a = std::move(b);  // closes what `a` held
  EXPECT_FALSE(b.IsOpen());
  WriteAll(folder / u"a", "free again");
  File c(std::move(a));
  c = File();
  WriteAll(folder / u"b", "free again");
}

TEST(File, GoesBeyondTwoGigabytes) {
  constexpr std::int64_t kFar = (std::int64_t{1} << 32) + 10;
  const TemporaryFolder folder;
  File file;
  ASSERT_EQ(file.Open(folder / u"sparse", kReadWrite, FileSharing::kNone, kCreateNew), 0U);
  std::int64_t position = 0;
  ASSERT_EQ(file.Seek(kFar, SeekOrigin::kBegin, position), 0U);
  EXPECT_EQ(position, kFar);
  ASSERT_EQ(file.TruncateHere(), 0U);
  std::int64_t size = 0;
  ASSERT_EQ(file.Size(size), 0U);
  EXPECT_EQ(size, kFar);
}

TEST(ReplaceFileBy, FailureLeavesTheOldFile) {
  const TemporaryFolder folder;
  WriteAll(folder / u"old", "old");
  EXPECT_NE(ReplaceFileBy(folder / u"missing", folder / u"old"), 0U);
  EXPECT_EQ(ReadAll(folder / u"old"), "old");
  WriteAll(folder / u"new", "new");
  EXPECT_NE(ReplaceFileBy(folder / u"new", folder.Path()), 0U);
  EXPECT_EQ(ReadAll(folder / u"new"), "new");
}

#ifndef _WIN32
TEST(ResolveLink, FollowsToTheEnd) {
  namespace fs = std::filesystem;
  const TemporaryFolder folder;
  WriteAll(folder / u"file", "x");
  fs::create_symlink(folder / u"file", folder / u"absolute");
  fs::create_symlink("absolute", folder / u"chain");
  fs::create_symlink("nowhere", folder / u"dangling");
  fs::create_symlink("circle", folder / u"circle");
  EXPECT_EQ(ResolveLink(folder / u"chain"), folder / u"file");
  EXPECT_EQ(ResolveLink(folder / u"dangling"), folder / u"nowhere");
  EXPECT_EQ(ResolveLink(folder / u"circle"), folder / u"circle");
}
#endif

}  // namespace
}  // namespace zentavo::platform
