#include "zentavo/http/message_assembly.h"

#include <algorithm>

namespace zentavo {

namespace {

using platform::SystemError;

constexpr std::uint16_t kProtocolError = 1002;
constexpr std::uint16_t kInvalidText = 1007;
constexpr std::uint16_t kMessageTooBig = 1009;

constexpr std::int64_t kGrowth = 512;                // bytes
constexpr std::int64_t kGrowsByHalf = 64 * kGrowth;  // from this capacity on, in bytes

void Grow(TMemoryStream& stream) {
  const std::int64_t capacity = stream.Capacity();
  const std::int64_t half = capacity / 2 / kGrowth * kGrowth;
  stream.SetCapacity(capacity + (capacity < kGrowsByHalf ? kGrowth : half));
}

std::string_view TextOf(const TMemoryStream& stream) {
  const auto bytes = stream.Bytes();
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

}  // namespace

SystemError MessageAssembly::Run() {
  stream_.SetSize(0);
  const SystemError error = Collect();
  stream_.SetSizeWritten(received_);
  if (error != 0 || Closed() || !is_text_ || IsValidUtf8(TextOf(stream_))) return error;
  socket_.Abandon(kInvalidText);
  return platform::kHttpInvalidResponse;
}

SystemError MessageAssembly::Collect() {
  do {
    if (const SystemError error = TakePiece()) return error;
  } while (!piece_.is_last && !piece_.is_close);
  return 0;
}

SystemError MessageAssembly::TakePiece() {
  if (const SystemError error = socket_.Receive(Space(), piece_)) return error;
  if (piece_.is_close) return 0;
  if (received_ + static_cast<std::int64_t>(piece_.count) > limit_) {
    socket_.Abandon(kMessageTooBig);
    return platform::kHttpResponseOverflow;
  }
  received_ += static_cast<std::int64_t>(piece_.count);
  empty_pieces_ = piece_.count == 0 ? empty_pieces_ + 1 : 0;
  if (empty_pieces_ > kMostEmptyPieces || (++pieces_ > 1 && piece_.is_text != is_text_)) {
    socket_.Abandon(kProtocolError);
    return platform::kHttpInvalidResponse;
  }
  is_text_ = piece_.is_text;
  return 0;
}

// Where the next piece goes; behind the longest message a byte of its own, to tell whether the
// message ends there.
std::span<std::byte> MessageAssembly::Space() {
  if (received_ >= limit_) return {&probe_, 1};
  if (received_ == stream_.Capacity()) Grow(stream_);
  const std::int64_t free = std::min(stream_.Capacity(), limit_) - received_;
  return {stream_.Memory() + received_, static_cast<std::size_t>(free)};
}

}  // namespace zentavo
