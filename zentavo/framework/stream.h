// Seekable byte streams: memory and files. A stream is used by one thread at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "zentavo/framework/object.h"
#include "zentavo/framework/text.h"
#include "zentavo/platform/files.h"

namespace zentavo {

enum class TSeekOrigin { soBeginning, soCurrent, soEnd };

// A sequence of bytes with a position and a size. Neither copied nor moved.
class ZENTAVO_API TStream : public TObject {
 public:
  TStream() = default;
  TStream(const TStream&) = delete;
  TStream& operator=(const TStream&) = delete;

  // Transfer up to `count` bytes at the position and move it on. Return the count done, 0 at the
  // end. A negative count transfers nothing.
  virtual std::int64_t Read(void* buffer, std::int64_t count) = 0;
  virtual std::int64_t Write(const void* buffer, std::int64_t count) = 0;
  // Moves the position and returns the new one; a place before the start counts as the start.
  virtual std::int64_t Seek(std::int64_t offset, TSeekOrigin origin) = 0;
  // Cuts or extends the stream; a memory stream fills with zeros.
  virtual void SetSize(std::int64_t size) = 0;

  // Transfer all of `count` bytes, else raise EReadError "Stream read error" or EWriteError "Stream
  // write error".
  void ReadBuffer(void* buffer, std::int64_t count);
  void WriteBuffer(const void* buffer, std::int64_t count);

  std::int64_t Position();
  void SetPosition(std::int64_t position);
  virtual std::int64_t Size();

  // Copies `count` bytes from `source`'s position; 0 rewinds `source` and copies all of it. Returns
  // the count copied; raises EReadError when `source` ends before.
  std::int64_t CopyFrom(TStream& source, std::int64_t count);
};

// A stream in memory that grows as it is written.
class ZENTAVO_API TMemoryStream : public TStream {
 public:
  TMemoryStream();
  ~TMemoryStream() override;

  std::int64_t Read(void* buffer, std::int64_t count) override;
  std::int64_t Write(const void* buffer, std::int64_t count) override;
  std::int64_t Seek(std::int64_t offset, TSeekOrigin origin) override;
  void SetSize(std::int64_t size) override;
  std::int64_t Size() override { return static_cast<std::int64_t>(size_); }

  // The whole content; valid until the stream is written or resized.
  std::byte* Memory() { return data_.get(); }
  const std::byte* Memory() const { return data_.get(); }
  std::span<const std::byte> Bytes() const { return {data_.get(), size_}; }
  // The bytes that are allocated at Memory; those behind the size have no meaning until they are
  // written to and counted by SetSizeWritten. A capacity below the size counts as the size.
  std::int64_t Capacity() const { return static_cast<std::int64_t>(capacity_); }
  void SetCapacity(std::int64_t capacity);
  // The size becomes `size`, at most the capacity, and the content what Memory holds.
  void SetSizeWritten(std::int64_t size);
  void Clear();
  void LoadFromStream(TStream& source);  // all of `source`, from its start; position 0 afterwards
  void SaveToStream(TStream& target) const;
  void LoadFromFile(StringView file_name);
  void SaveToFile(StringView file_name) const;

 private:
  struct Freer {
    void operator()(std::byte* memory) const noexcept;
  };

  void Reallocate(std::size_t capacity);
  void Extend(std::size_t size);  // with zeros

  std::unique_ptr<std::byte[], Freer> data_;  // by the C library, which may grow it in place
  std::size_t size_ = 0;
  std::size_t capacity_ = 0;
  std::int64_t position_ = 0;
};

// Open modes: fmCreate alone (writes and reads, shares with nobody), or one of the next three,
// or'ed with one sharing mode; without one the file is shared with nobody.
inline constexpr std::uint16_t fmCreate = 0xFFFF;
inline constexpr std::uint16_t fmOpenRead = 0;
inline constexpr std::uint16_t fmOpenWrite = 1;
inline constexpr std::uint16_t fmOpenReadWrite = 2;
inline constexpr std::uint16_t fmShareExclusive = 0x10;
inline constexpr std::uint16_t fmShareDenyWrite = 0x20;
inline constexpr std::uint16_t fmShareDenyNone = 0x40;

// A stream over a file, unbuffered.
class ZENTAVO_API TFileStream : public TStream {
 public:
  // Opens or creates the file. Raises EFOpenError "Cannot open file \"%s\". %s" or EFCreateError
  // "Cannot create file \"%s\". %s" with the name and the system's text.
  TFileStream(StringView file_name, std::uint16_t mode);

  // Read and Write raise EReadError or EWriteError with the name and the system's text when the
  // system refuses; reading at the end returns 0.
  std::int64_t Read(void* buffer, std::int64_t count) override;
  std::int64_t Write(const void* buffer, std::int64_t count) override;
  std::int64_t Seek(std::int64_t offset, TSeekOrigin origin) override;
  void SetSize(std::int64_t size) override;
  std::int64_t Size() override;

  const String& FileName() const { return file_name_; }
  // Forces what was written to the disk.
  void Flush();

 private:
  String file_name_;
  platform::File file_;
};

}  // namespace zentavo
