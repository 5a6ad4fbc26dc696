#include "zentavo/framework/atomic_file.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <iterator>
#include <string>

#include "tests/support/error_of.h"
#include "tests/support/program_run.h"
#include "tests/support/temporary_folder.h"

namespace zentavo {
namespace {

namespace fs = std::filesystem;
using testing::ErrorOf;
using testing::ReadBytes;
using testing::TemporaryFolder;
using testing::WriteBytes;

std::ptrdiff_t FileCount(const TemporaryFolder& folder) {
  return std::distance(std::filesystem::directory_iterator(folder.Path()), {});
}

std::span<const std::byte> Bytes(std::string_view text) {
  return std::as_bytes(std::span(text));
}

// Refuses the Nth thing that is asked of it, counted from 0.
class FailingSteps : public AtomicFileSteps {
 public:
  explicit FailingSteps(int fails_at) : left_(fails_at) {}

  platform::SystemError CheckWritable(StringView path) override {
    return Fails() ? kError : AtomicFileSteps::CheckWritable(path);
  }
  platform::SystemError Create(platform::File& file, StringView path,
                               platform::FileCreation creation) override {
    return Fails() ? kError : AtomicFileSteps::Create(file, path, creation);
  }
  platform::SystemError Write(platform::File& file, std::span<const std::byte> bytes,
                              std::size_t& done) override {
    if (!Fails()) return AtomicFileSteps::Write(file, bytes, done);
    AtomicFileSteps::Write(file, bytes.first(bytes.size() / 2), done);  // as a full disk does
    return kError;
  }
  platform::SystemError Replace(StringView from, StringView to) override {
    return Fails() ? kError : AtomicFileSteps::Replace(from, to);
  }

  static constexpr platform::SystemError kError = 5;

 private:
  bool Fails() { return left_-- == 0; }
  int left_;
};

// Whether saving in two pieces over "old" succeeds when the Nth step fails.
bool SavesWithFailureAt(int step, const TemporaryFolder& folder) {
  FailingSteps steps(step);
  try {
    TAtomicFileStream file(folder / u"file", steps);
    file.WriteBuffer("new ", 4);
    file.WriteBuffer("content", 7);
    file.Commit();
    return true;
  } catch (const EStreamError& error) {
    EXPECT_NE(error.Message().find(u"\"" + (folder / u"file") + u"\""), String::npos);
    return false;
  }
}

TEST(TAtomicFileStream, EveryFailureLeavesTheOldFileAlone) {
  const TemporaryFolder folder;
  WriteBytes(folder / u"file", "old");
  int step = 0;
  while (!SavesWithFailureAt(step, folder)) {
    EXPECT_EQ(ReadBytes(folder / u"file"), "old") << "step " << step;
    EXPECT_EQ(FileCount(folder), 1) << "step " << step;
    ++step;
  }
  EXPECT_EQ(step, 5);  // check, create, write twice, replace
  EXPECT_EQ(ReadBytes(folder / u"file"), "new content");
  EXPECT_EQ(FileCount(folder), 1);
}

TEST(TAtomicFileStream, NothingRemainsWithoutCommit) {
  const TemporaryFolder folder;
  WriteBytes(folder / u"file", "old");
  {
    TAtomicFileStream file(folder / u"file");
    file.WriteBuffer("new", 3);
  }
  EXPECT_EQ(ReadBytes(folder / u"file"), "old");
  EXPECT_EQ(FileCount(folder), 1);
}

TEST(TAtomicFileStream, ReadsBackAndRefusesAllAfterCommit) {
  const TemporaryFolder folder;
  TAtomicFileStream file(folder / u"file");
  file.WriteBuffer("0123456789", 10);
  file.Seek(-4, TSeekOrigin::soEnd);
  char read[2] = {};
  file.ReadBuffer(read, 2);
  EXPECT_EQ(std::string(read, 2), "67");
  EXPECT_EQ(file.Seek(-100, TSeekOrigin::soCurrent), 0);
  file.SetSize(4);
  file.Commit();
  EXPECT_EQ(ReadBytes(folder / u"file"), "0123");
  EXPECT_THROW(file.Write("x", 1), EWriteError);
  EXPECT_THROW(file.Commit(), EWriteError);
}

TEST(SaveFileAtomically, NamesWhatCannotBeCreated) {
  const TemporaryFolder folder;
  const String name = (folder / u"missing") + u"/file";
  const std::string error = ErrorOf<EFCreateError>([&] { SaveFileAtomically(name, Bytes("x")); });
  EXPECT_TRUE(error.starts_with("Cannot create file \"" + ToUtf8(name) + "\". ")) << error;
  EXPECT_THROW(SaveFileAtomically(folder.Path(), Bytes("x")), EFCreateError);
  EXPECT_EQ(FileCount(folder), 0);
}

TEST(SaveFileAtomically, TakesTheLongestNamesAndPaths) {
  const TemporaryFolder folder;
  const String parent = folder / String(110, u'α');
  fs::create_directory(fs::path(parent));
  const String name = parent + u'/' + String(200, u'n');
  SaveFileAtomically(name, Bytes("x"));
  EXPECT_EQ(ReadBytes(name), "x");
  EXPECT_EQ(platform::RemoveFile(name), 0U);
}

TEST(SaveFileAtomically, KeepsPermissions) {
  const TemporaryFolder folder;
  WriteBytes(folder / u"file", "old");
  fs::permissions(fs::path(folder / u"file"), fs::perms::owner_read | fs::perms::owner_write);
  const fs::perms before = fs::status(fs::path(folder / u"file")).permissions();
  SaveFileAtomically(folder / u"file", Bytes("new"));
  EXPECT_EQ(fs::status(fs::path(folder / u"file")).permissions(), before);
  EXPECT_EQ(ReadBytes(folder / u"file"), "new");
}

TEST(SaveFileAtomically, ReplacesWhatALinkLeadsTo) {
  const TemporaryFolder folder;
  fs::create_directory(fs::path(folder / u"far"));
  WriteBytes(folder / u"far/target", "old");
  std::error_code error;
  fs::create_symlink("far/target", fs::path(folder / u"link"), error);
  if (error) GTEST_SKIP() << "no symbolic links here";
  SaveFileAtomically(folder / u"link", Bytes("new"));
  EXPECT_TRUE(fs::is_symlink(fs::path(folder / u"link")));
  EXPECT_EQ(ReadBytes(folder / u"far/target"), "new");
}

TEST(SaveFileAtomically, WritesToADeviceAsItIs) {
#ifdef _WIN32
  const String device = u"NUL";
#else
  const String device = u"/dev/null";
#endif
  SaveFileAtomically(device, Bytes("gone"));
  EXPECT_TRUE(platform::IsDevice(device));
}

TEST(LoadFileWhole, ReadsAllOrNamesWhatCannotBeOpened) {
  const TemporaryFolder folder;
  for (const std::size_t size : {0, 1, 4095, 4096, 10000}) {
    const std::string bytes(size, 'x');
    WriteBytes(folder / u"file", bytes);
    EXPECT_EQ(LoadFileWhole(folder / u"file"), bytes);
  }
#ifndef _WIN32  // a file whose size is 0 until it is read
  EXPECT_NE(LoadFileWhole(u"/proc/self/maps").find("[stack]"), AnsiString::npos);
#endif
  const String name = folder / u"missing";
  const std::string error = ErrorOf<EFOpenError>([&] { LoadFileWhole(name); });
  EXPECT_TRUE(error.starts_with("Cannot open file \"" + ToUtf8(name) + "\". ")) << error;
}

}  // namespace
}  // namespace zentavo
