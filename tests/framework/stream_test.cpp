#include "zentavo/framework/stream.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>

#include "support/temporary_folder.h"
#include "zentavo/framework/exception.h"

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
  const String missing = folder / u"missing/f";
  try {
    TFileStream stream(missing, fmOpenRead);
    ADD_FAILURE() << "opened";
  } catch (const EFOpenError& error) {
    EXPECT_TRUE(error.Message().starts_with(u"Cannot open file \"" + missing + u"\". "));
    EXPECT_FALSE(error.Message().ends_with(u". "));
  }
  try {
    TFileStream stream(missing, fmCreate);
    ADD_FAILURE() << "created";
  } catch (const EFCreateError& error) {
    EXPECT_TRUE(error.Message().starts_with(u"Cannot create file \"" + missing + u"\". "));
  }
}

// Gives and takes one byte a call, and none beyond `limit`.
class TricklingStream : public TMemoryStream {
 public:
  explicit TricklingStream(std::int64_t limit) : limit_(limit) {}
  std::int64_t Read(void* buffer, std::int64_t count) override {
    return Position() < limit_ ? TMemoryStream::Read(buffer, std::min<std::int64_t>(count, 1)) : 0;
  }
  std::int64_t Write(const void* buffer, std::int64_t count) override {
    return Position() < limit_ ? TMemoryStream::Write(buffer, std::min<std::int64_t>(count, 1)) : 0;
  }

 private:
  std::int64_t limit_;
};

TEST(TStream, BufferTransfersAreAllOrAnError) {
  for (std::int64_t limit = 0; limit <= 4; ++limit) {
    TricklingStream stream(limit);
    if (limit < 4) {
      EXPECT_THROW(stream.WriteBuffer("abcd", 4), EWriteError);
    } else {
      stream.WriteBuffer("abcd", 4);
      EXPECT_EQ(stream.Size(), 4);
    }
  }
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
