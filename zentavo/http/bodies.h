// Request bodies over what callers hand in, which must outlive them.
#pragma once

#include <span>

#include "zentavo/framework/stream.h"
#include "zentavo/platform/http.h"

namespace zentavo {

class MemoryBody : public platform::HttpBody {
 public:
  explicit MemoryBody(std::span<const std::byte> bytes) : bytes_(bytes), rest_(bytes) {}

  std::uint64_t Size() override { return bytes_.size(); }
  std::size_t Read(std::span<std::byte> buffer) override;
  void Rewind() override { rest_ = bytes_; }

 private:
  std::span<const std::byte> bytes_;
  std::span<const std::byte> rest_;
};

// All of a stream from its start.
class StreamBody : public platform::HttpBody {
 public:
  explicit StreamBody(TStream& stream) : stream_(stream) {}

  std::uint64_t Size() override { return static_cast<std::uint64_t>(stream_.Size()); }
  std::size_t Read(std::span<std::byte> buffer) override;
  void Rewind() override { stream_.SetPosition(0); }

 private:
  TStream& stream_;
};

}  // namespace zentavo
