#include "zentavo/platform/files.h"

#include <gtest/gtest.h>

#include <array>
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

TEST(File, WritesSeeksReadsAndCuts) {
  const TemporaryFolder folder;
  const std::u16string path = folder / u"αρχείο.txt";
  File file;
  ASSERT_EQ(file.Open(path, kReadWrite, FileSharing::kNone, kCreateNew), 0U);
  std::size_t done = 0;
  ASSERT_EQ(file.Write(Bytes("0123456789"), done), 0U);

  std::int64_t position = 0;
  ASSERT_EQ(file.Seek(-4, SeekOrigin::kEnd, position), 0U);
  EXPECT_EQ(position, 6);
  ASSERT_EQ(file.Seek(-2, SeekOrigin::kCurrent, position), 0U);
  std::array<std::byte, 20> buffer{};
  ASSERT_EQ(file.Read(buffer, done), 0U);
  EXPECT_EQ(done, 6U);
  EXPECT_EQ(buffer[0], std::byte{'4'});
  EXPECT_EQ(file.Read(buffer, done), 0U);
  EXPECT_EQ(done, 0U);

  EXPECT_NE(file.Seek(-1, SeekOrigin::kBegin, position), 0U);
  ASSERT_EQ(file.Seek(3, SeekOrigin::kBegin, position), 0U);
  ASSERT_EQ(file.TruncateHere(), 0U);
  EXPECT_EQ(file.Flush(), 0U);
  std::int64_t size = 0;
  ASSERT_EQ(file.Size(size), 0U);
  EXPECT_EQ(size, 3);
  file.Close();
  EXPECT_EQ(ReadAll(path), "012");
}

TEST(File, CreationModes) {
  struct Row {
    FileCreation creation;
    bool exists, opens;
    const char* content;
  };
  constexpr Row kRows[] = {
      {kOpenExisting, true, true, "old"},  {kOpenExisting, false, false, "(not open)"},
      {kCreateOrTruncate, true, true, ""}, {kCreateOrTruncate, false, true, ""},
      {kOpenOrCreate, true, true, "old"},  {kOpenOrCreate, false, true, ""},
      {kCreateNew, true, false, "old"},    {kCreateNew, false, true, ""},
  };
  for (const Row& row : kRows) {
    SCOPED_TRACE(static_cast<int>(row.creation) * 10 + row.exists);
    const TemporaryFolder folder;
    const std::u16string path = folder / u"f";
    if (row.exists) WriteAll(path, "old");
    File file;
    EXPECT_EQ(file.Open(path, kReadWrite, FileSharing::kNone, row.creation) == 0, row.opens);
    EXPECT_EQ(file.IsOpen(), row.opens);
    file.Close();
    EXPECT_EQ(ReadAll(path), row.content);
  }
}

TEST(File, SharingKeepsOpenersApart) {
  struct Row {
    FileAccess first;
    FileSharing first_sharing;
    FileAccess second;
    FileSharing second_sharing;
    bool opens;
  };
  constexpr Row kRows[] = {
      {kRead, FileSharing::kNone, kRead, FileSharing::kRead, false},
      {kReadWrite, FileSharing::kNone, kWrite, FileSharing::kReadWrite, false},
      {kRead, FileSharing::kRead, kRead, FileSharing::kRead, true},
      {kRead, FileSharing::kRead, kWrite, FileSharing::kRead, false},
      {kWrite, FileSharing::kRead, kWrite, FileSharing::kRead, false},
      {kWrite, FileSharing::kRead, kRead, FileSharing::kReadWrite, true},
      {kWrite, FileSharing::kReadWrite, kWrite, FileSharing::kReadWrite, true},
      {kWrite, FileSharing::kReadWrite, kRead, FileSharing::kNone, false},
  };
  for (const Row& row : kRows) {
    SCOPED_TRACE(&row - kRows);
    const TemporaryFolder folder;
    const std::u16string path = folder / u"f";
    WriteAll(path, "x");
    File first;
    ASSERT_EQ(first.Open(path, row.first, row.first_sharing, kOpenExisting), 0U);
    File second;
    EXPECT_EQ(second.Open(path, row.second, row.second_sharing, kOpenExisting) == 0, row.opens);
  }
}

TEST(File, RefusedCreationKeepsTheContent) {
  const TemporaryFolder folder;
  const std::u16string path = folder / u"f";
  WriteAll(path, "kept");
  File holder;
  ASSERT_EQ(holder.Open(path, kRead, FileSharing::kRead, kOpenExisting), 0U);
  File second;
  EXPECT_NE(second.Open(path, kWrite, FileSharing::kNone, kCreateOrTruncate), 0U);
  holder.Close();
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
      EXPECT_FALSE(file.IsOpen());
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
  EXPECT_TRUE(c.IsOpen());
  c = File();
  EXPECT_FALSE(c.IsOpen());
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

TEST(File, TakesLongPaths) {
  const TemporaryFolder folder;
  const std::u16string parent = folder / std::u16string(110, u'α');
  const std::u16string path = parent + u'/' + std::u16string(120, u'b');
  std::filesystem::create_directory(std::filesystem::path(parent));
  WriteAll(path, "far");
  EXPECT_EQ(ReadAll(path), "far");
  EXPECT_EQ(RemoveFile(path), 0U);
}

TEST(ReplaceFileBy, PutsTheNewFileInPlace) {
  const TemporaryFolder folder;
  for (const bool exists : {true, false}) {
    const std::u16string from = folder / u"νέο";
    const std::u16string to = folder / (exists ? u"παλιό" : u"missing");
    if (exists) WriteAll(to, "old content");
    WriteAll(from, "new");
    EXPECT_EQ(ReplaceFileBy(from, to), 0U);
    EXPECT_EQ(ReadAll(to), "new");
    EXPECT_FALSE(FileExists(from));
  }
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
TEST(ReplaceFileBy, KeepsTheOldPermissions) {
  namespace fs = std::filesystem;
  const TemporaryFolder folder;
  WriteAll(folder / u"old", "old");
  WriteAll(folder / u"new", "new");
  constexpr fs::perms kMode = fs::perms::owner_all | fs::perms::group_read;
  fs::permissions(folder / u"old", kMode);
  ASSERT_EQ(ReplaceFileBy(folder / u"new", folder / u"old"), 0U);
  EXPECT_EQ(fs::status(folder / u"old").permissions(), kMode);
}

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

TEST(ResolveLink, LeavesOtherPathsAlone) {
  const TemporaryFolder folder;
  WriteAll(folder / u"file", "x");
  EXPECT_EQ(ResolveLink(folder / u"file"), folder / u"file");
  EXPECT_EQ(ResolveLink(folder / u"missing"), folder / u"missing");
}

}  // namespace
}  // namespace zentavo::platform
