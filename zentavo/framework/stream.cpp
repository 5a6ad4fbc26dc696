#include "zentavo/framework/stream.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <utility>
#include <vector>

#include "zentavo/framework/exception.h"
#include "zentavo/platform/system_error.h"

namespace zentavo {

namespace {

constexpr std::int64_t kCopyPiece = std::int64_t{64} << 10;  // bytes
constexpr std::int64_t kFarthest = std::numeric_limits<std::int64_t>::max();

std::span<std::byte> Writable(void* buffer, std::int64_t count) {
  return {static_cast<std::byte*>(buffer), static_cast<std::size_t>(count)};
}

std::span<const std::byte> Readable(const void* buffer, std::int64_t count) {
  return {static_cast<const std::byte*>(buffer), static_cast<std::size_t>(count)};
}

// `base` moved by `offset`, kept between the start and the farthest place there is.
std::int64_t Moved(std::int64_t base, std::int64_t offset) {
  if (offset > kFarthest - base) return kFarthest;
  return std::max<std::int64_t>(base + offset, 0);
}

// "WHAT "NAME". SYSTEM TEXT"
String FileErrorText(StringView what, StringView file_name, platform::SystemError error) {
  String text(what);
  text.append(u" \"").append(file_name).append(u"\". ");
  return text.append(platform::SystemErrorText(error));
}

platform::FileAccess AccessOf(std::uint16_t mode) {
  switch (mode & 3) {
    case fmOpenRead: return platform::FileAccess::kRead;
    case fmOpenWrite: return platform::FileAccess::kWrite;
    default: return platform::FileAccess::kReadWrite;
  }
}

platform::FileSharing SharingOf(std::uint16_t mode) {
  switch (mode & 0xF0) {
    case fmShareDenyWrite: return platform::FileSharing::kRead;
    case fmShareDenyNone: return platform::FileSharing::kReadWrite;
    default: return platform::FileSharing::kNone;
  }
}

platform::SystemError OpenByMode(platform::File& file, StringView file_name, std::uint16_t mode) {
  if (mode == fmCreate) {
    return file.Open(file_name, platform::FileAccess::kReadWrite, platform::FileSharing::kNone,
                     platform::FileCreation::kCreateOrTruncate);
  }
  return file.Open(file_name, AccessOf(mode), SharingOf(mode),
                   platform::FileCreation::kOpenExisting);
}

template <typename Error>
void Check(platform::SystemError error, StringView what, StringView file_name) {
  if (error != 0) throw Error(FileErrorText(what, file_name, error));
}

constexpr StringView kCannotRead = u"Cannot read file";
constexpr StringView kCannotWrite = u"Cannot write file";

}  // namespace

void TStream::ReadBuffer(void* buffer, std::int64_t count) {
  std::int64_t done = 0;
  while (done < count) {
    const std::int64_t step = Read(static_cast<std::byte*>(buffer) + done, count - done);
    if (step <= 0) throw EReadError(u"Stream read error");
    done += step;
  }
}

void TStream::WriteBuffer(const void* buffer, std::int64_t count) {
  std::int64_t done = 0;
  while (done < count) {
    const std::int64_t step = Write(static_cast<const std::byte*>(buffer) + done, count - done);
    if (step <= 0) throw EWriteError(u"Stream write error");
    done += step;
  }
}

std::int64_t TStream::Position() {
  return Seek(0, TSeekOrigin::soCurrent);
}

void TStream::SetPosition(std::int64_t position) {
  Seek(position, TSeekOrigin::soBeginning);
}

std::int64_t TStream::Size() {
  const std::int64_t position = Position();
  const std::int64_t size = Seek(0, TSeekOrigin::soEnd);
  SetPosition(position);
  return size;
}

std::int64_t TStream::CopyFrom(TStream& source, std::int64_t count) {
  if (count == 0) {
    source.SetPosition(0);
    count = source.Size();
  }
  count = std::max<std::int64_t>(count, 0);
  std::vector<std::byte> piece(static_cast<std::size_t>(std::min(count, kCopyPiece)));
  for (std::int64_t left = count; left > 0;) {
    const std::int64_t step = std::min(left, kCopyPiece);
    source.ReadBuffer(piece.data(), step);
    WriteBuffer(piece.data(), step);
    left -= step;
  }
  return count;
}

TMemoryStream::TMemoryStream() = default;
TMemoryStream::~TMemoryStream() = default;

void TMemoryStream::Freer::operator()(std::byte* memory) const noexcept {
  std::free(memory);
}

void TMemoryStream::Reallocate(std::size_t capacity) {
  if (capacity == 0) {
    data_.reset();
    capacity_ = 0;
    return;
  }
  auto* const grown = static_cast<std::byte*>(std::realloc(data_.get(), capacity));
  if (grown == nullptr) throw std::bad_alloc();
  static_cast<void>(data_.release());  // realloc took it
  data_.reset(grown);
  capacity_ = capacity;
}

void TMemoryStream::SetCapacity(std::int64_t capacity) {
  const auto wanted = static_cast<std::size_t>(std::max<std::int64_t>(capacity, 0));
  Reallocate(std::max(wanted, size_));
}

void TMemoryStream::SetSizeWritten(std::int64_t size) {
  size_ = std::min(static_cast<std::size_t>(std::max<std::int64_t>(size, 0)), capacity_);
  position_ = std::min(position_, Size());
}

std::int64_t TMemoryStream::Read(void* buffer, std::int64_t count) {
  const std::int64_t done = std::min(count, Size() - position_);
  if (done <= 0) return 0;
  std::memcpy(buffer, data_.get() + position_, static_cast<std::size_t>(done));
  position_ += done;
  return done;
}

std::int64_t TMemoryStream::Write(const void* buffer, std::int64_t count) {
  if (count <= 0) return 0;
  const std::int64_t end = Moved(position_, count);
  if (end > Size()) Extend(static_cast<std::size_t>(end));
  std::memcpy(data_.get() + position_, buffer, static_cast<std::size_t>(count));
  position_ = end;
  return count;
}

std::int64_t TMemoryStream::Seek(std::int64_t offset, TSeekOrigin origin) {
  switch (origin) {
    case TSeekOrigin::soBeginning: position_ = Moved(0, offset); break;
    case TSeekOrigin::soCurrent: position_ = Moved(position_, offset); break;
    case TSeekOrigin::soEnd: position_ = Moved(Size(), offset); break;
  }
  return position_;
}

// Half as much again at least, so that many small writes stay cheap.
void TMemoryStream::Extend(std::size_t size) {
  if (size > capacity_) Reallocate(std::max(size, capacity_ + capacity_ / 2));
  std::memset(data_.get() + size_, 0, size - size_);
  size_ = size;
}

void TMemoryStream::SetSize(std::int64_t size) {
  const auto wanted = static_cast<std::size_t>(std::max<std::int64_t>(size, 0));
  if (wanted > size_) Extend(wanted);
  size_ = wanted;
  position_ = std::min(position_, Size());
}

void TMemoryStream::Clear() {
  data_.reset();
  size_ = capacity_ = 0;
  position_ = 0;
}

void TMemoryStream::LoadFromStream(TStream& source) {
  source.SetPosition(0);
  const std::int64_t size = source.Size();
  TMemoryStream loaded;
  loaded.SetCapacity(size);
  source.ReadBuffer(loaded.Memory(), size);
  loaded.SetSizeWritten(size);
  std::swap(data_, loaded.data_);
  std::swap(size_, loaded.size_);
  std::swap(capacity_, loaded.capacity_);
  position_ = 0;
}

void TMemoryStream::SaveToStream(TStream& target) const {
  target.WriteBuffer(data_.get(), static_cast<std::int64_t>(size_));
}

void TMemoryStream::LoadFromFile(StringView file_name) {
  TFileStream file(file_name, fmOpenRead | fmShareDenyWrite);
  LoadFromStream(file);
}

void TMemoryStream::SaveToFile(StringView file_name) const {
  TFileStream file(file_name, fmCreate);
  SaveToStream(file);
}

TFileStream::TFileStream(StringView file_name, std::uint16_t mode) : file_name_(file_name) {
  const platform::SystemError error = OpenByMode(file_, file_name, mode);
  if (mode == fmCreate) {
    Check<EFCreateError>(error, u"Cannot create file", file_name);
  } else {
    Check<EFOpenError>(error, u"Cannot open file", file_name);
  }
}

std::int64_t TFileStream::Read(void* buffer, std::int64_t count) {
  if (count <= 0) return 0;
  std::size_t done = 0;
  Check<EReadError>(file_.Read(Writable(buffer, count), done), kCannotRead, file_name_);
  return static_cast<std::int64_t>(done);
}

std::int64_t TFileStream::Write(const void* buffer, std::int64_t count) {
  if (count <= 0) return 0;
  std::size_t done = 0;
  Check<EWriteError>(file_.Write(Readable(buffer, count), done), kCannotWrite, file_name_);
  return static_cast<std::int64_t>(done);
}

std::int64_t TFileStream::Seek(std::int64_t offset, TSeekOrigin origin) {
  std::int64_t base = 0;
  if (origin == TSeekOrigin::soEnd) base = Size();
  if (origin == TSeekOrigin::soCurrent) {
    Check<EReadError>(file_.Seek(0, platform::SeekOrigin::kCurrent, base), kCannotRead, file_name_);
  }
  std::int64_t position = 0;
  Check<EReadError>(file_.Seek(Moved(base, offset), platform::SeekOrigin::kBegin, position),
                    kCannotRead, file_name_);
  return position;
}

void TFileStream::SetSize(std::int64_t size) {
  SetPosition(size);
  Check<EWriteError>(file_.TruncateHere(), kCannotWrite, file_name_);
}

std::int64_t TFileStream::Size() {
  std::int64_t size = 0;
  Check<EReadError>(file_.Size(size), kCannotRead, file_name_);
  return size;
}

void TFileStream::Flush() {
  Check<EWriteError>(file_.Flush(), kCannotWrite, file_name_);
}

}  // namespace zentavo
