#include "zentavo/framework/stream.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>

#include "tests/support/error_of.h"
#include "tests/support/temporary_folder.h"

namespace zentavo {
namespace {

using testing::TemporaryFolder;

void Write(TStream& stream, std::string_view text) {
  stream.WriteBuffer(text.data(), static_cast<std::int64_t>(text.size()));
}

std::string ReadRest(TStream& stream) {
  std::string text(static_cast<std::size_t>(stream.Size()), ' ');
  const std::int64_t done = stream.Read(text.data(), stream.Size());
  return text.substr(0, static_cast<std::size_t>(done));
}

// What every stream does, with an empty one.
void CheckStream(TStream& stream) {
  Write(stream, "0123456789");
  EXPECT_EQ(stream.Position(), 10);
  EXPECT_EQ(stream.Seek(-3, TSeekOrigin::soEnd), 7);
  EXPECT_EQ(stream.Seek(-2, TSeekOrigin::soCurrent), 5);
  EXPECT_EQ(stream.Seek(-99, TSeekOrigin::soCurrent), 0);
  EXPECT_EQ(stream.Seek(-1, TSeekOrigin::soBeginning), 0);
  stream.SetPosition(4);
  Write(stream, "xx");
  EXPECT_EQ(ReadRest(stream), "6789");

  char buffer[20];
  EXPECT_EQ(stream.Read(buffer, 5), 0);
  EXPECT_EQ(stream.Read(buffer, -1), 0);
  EXPECT_EQ(stream.Write(buffer, -1), 0);
  EXPECT_THROW(stream.ReadBuffer(buffer, 1), EReadError);

  stream.SetSize(5);
  EXPECT_EQ(stream.Size(), 5);
  stream.SetPosition(0);
  EXPECT_EQ(ReadRest(stream), "0123x");
  stream.SetPosition(7);  // behind the end: what lies between becomes zeros
  EXPECT_EQ(stream.Read(buffer, 1), 0);
  Write(stream, "z");
  stream.SetPosition(4);
  EXPECT_EQ(ReadRest(stream), std::string_view("x\0\0z", 4));
}

TEST(TMemoryStream, ReadsWritesAndSeeks) {
  TMemoryStream stream;
  CheckStream(stream);
  stream.Clear();
  EXPECT_EQ(stream.Size(), 0);
  EXPECT_EQ(stream.Position(), 0);
  stream.SetSize(2);
  EXPECT_EQ(stream.Bytes()[1], std::byte{0});
}

TEST(TFileStream, ReadsWritesAndSeeks) {
  const TemporaryFolder folder;
  TFileStream stream(folder / u"αρχείο", fmCreate);
  CheckStream(stream);
  stream.Flush();
}

TEST(TFileStream, OpenModes) {
  const TemporaryFolder folder;
  const String name = folder / u"f";
  Write(*std::make_unique<TFileStream>(name, fmCreate), "old");
  char buffer = 'x';
  TFileStream reader(name, fmOpenRead | fmShareDenyNone);
  EXPECT_THROW(reader.Write(&buffer, 1), EWriteError);
  TFileStream writer(name, fmOpenWrite | fmShareDenyNone);
  EXPECT_THROW(writer.Read(&buffer, 1), EReadError);
  writer.Seek(0, TSeekOrigin::soEnd);
  Write(writer, "+new");
  EXPECT_EQ(ReadRest(reader), "old+new");
}

TEST(TFileStream, RefusalsNameTheFile) {
  const TemporaryFolder folder;
  const String name = folder / u"missing/f";
  const auto open = [&](std::uint16_t mode) { TFileStream stream(name, mode); };
  const std::string opening = testing::ErrorOf<EFOpenError>([&] { open(fmOpenRead); });
  const std::string start = "Cannot open file \"" + ToUtf8(name) + "\". ";
  EXPECT_TRUE(opening.starts_with(start) && opening.size() > start.size()) << opening;
  const std::string creating = testing::ErrorOf<EFCreateError>([&] { open(fmCreate); });
  EXPECT_TRUE(creating.starts_with("Cannot create file \"" + ToUtf8(name) + "\". ")) << creating;
}

// Takes one byte a call, and none beyond `limit`.
class TricklingStream : public TMemoryStream {
 public:
  explicit TricklingStream(std::int64_t limit) : limit_(limit) {}
  std::int64_t Write(const void* buffer, std::int64_t count) override {
    return Position() < limit_ ? TMemoryStream::Write(buffer, std::min<std::int64_t>(count, 1)) : 0;
  }

 private:
  std::int64_t limit_;
};

TEST(TStream, BufferTransfersAreAllOrAnError) {
  TricklingStream full(3);
  EXPECT_THROW(full.WriteBuffer("abcd", 4), EWriteError);
  TricklingStream slow(4);
  slow.WriteBuffer("abcd", 4);
  EXPECT_EQ(slow.Size(), 4);
}

TEST(TStream, CopyFromTakesAllOrACount) {
  TMemoryStream source;
  Write(source, std::string(200'000, 'a') + "end");
  TMemoryStream target;
  EXPECT_EQ(target.CopyFrom(source, 0), 200'003);
  EXPECT_EQ(target.Size(), 200'003);
  source.SetPosition(200'000);
  EXPECT_EQ(target.CopyFrom(source, 2), 2);
  EXPECT_THROW(target.CopyFrom(source, 2), EReadError);
  target.SetPosition(199'999);
  EXPECT_EQ(ReadRest(target), "aenden");
}

TEST(TMemoryStream, CapacityIsFilledFromOutside) {
  TMemoryStream stream;
  Write(stream, "abc");
  stream.SetCapacity(8);
  EXPECT_EQ(stream.Capacity(), 8);
  stream.Memory()[3] = std::byte{'d'};
  stream.SetSizeWritten(4);
  stream.SetPosition(0);
  EXPECT_EQ(ReadRest(stream), "abcd");
  stream.SetCapacity(1);
  EXPECT_EQ(stream.Capacity(), 4);
  stream.SetSizeWritten(9);
  EXPECT_EQ(stream.Size(), 4);
  stream.SetSizeWritten(1);
  stream.SetSize(3);
  stream.SetPosition(0);
  EXPECT_EQ(ReadRest(stream), std::string("a\0\0", 3));
  stream.Clear();
  stream.SetCapacity(0);
  EXPECT_EQ(stream.Capacity(), 0);
}

TEST(TMemoryStream, GoesThroughFiles) {
  const TemporaryFolder folder;
  TMemoryStream stream;
  Write(stream, "content");
  stream.SaveToFile(folder / u"f");
  TMemoryStream other;
  Write(other, "something longer");
  other.LoadFromFile(folder / u"f");
  EXPECT_EQ(other.Position(), 0);
  EXPECT_EQ(ReadRest(other), "content");
  EXPECT_THROW(other.LoadFromFile(folder / u"missing"), EFOpenError);
  EXPECT_EQ(other.Size(), 7);
}

}  // namespace
}  // namespace zentavo
