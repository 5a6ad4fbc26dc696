#include "zentavo/platform/directories.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "support/temporary_folder.h"

namespace zentavo::platform {
namespace {

using testing::TemporaryFolder;

TEST(Directories, AreMadeInTheirParentAndRemovedWhenEmpty) {
  const TemporaryFolder folder;
  const std::u16string outer = folder / u"κατάλογος";
  const std::u16string inner = outer + PathSeparator() + u"inner";
  EXPECT_NE(MakeDirectory(inner), 0U);  // its parent is missing
  EXPECT_EQ(MakeDirectory(outer), 0U);
  EXPECT_NE(MakeDirectory(outer), 0U);
  EXPECT_EQ(MakeDirectory(inner), 0U);
  EXPECT_NE(RemoveEmptyDirectory(outer), 0U);
  EXPECT_EQ(RemoveEmptyDirectory(inner), 0U);
  EXPECT_FALSE(DirectoryExists(inner));
  EXPECT_FALSE(GrantFullAccess(inner) || GrantFullAccess(u""));
  EXPECT_EQ(TemporaryDirectory().back(), PathSeparator());
}

#ifndef _WIN32
TEST(GrantFullAccess, OpensTheDirectoryAndKeepsItsOtherBits) {
  namespace fs = std::filesystem;
  const TemporaryFolder folder;
  fs::permissions(folder.Path(), fs::perms::owner_all | fs::perms::sticky_bit);
  EXPECT_TRUE(GrantFullAccess(folder.Path()) && GrantFullAccess(folder.Path()));
  EXPECT_EQ(fs::status(folder.Path()).permissions(),
            fs::perms::all | fs::perms::set_gid | fs::perms::sticky_bit);
}

TEST(GrantFullAccess, NeverFollowsALink) {
  namespace fs = std::filesystem;
  const TemporaryFolder folder;
  const std::u16string target = folder / u"target";
  ASSERT_EQ(MakeDirectory(target), 0U);
  fs::permissions(target, fs::perms::owner_all);
  fs::create_directory_symlink(target, folder / u"link");
  EXPECT_FALSE(GrantFullAccess(folder / u"link"));
  EXPECT_FALSE(GrantFullAccess((folder / u"link") + u"//"));
  EXPECT_EQ(fs::status(target).permissions(), fs::perms::owner_all);
}
#endif

}  // namespace
}  // namespace zentavo::platform
