#include "zentavo/http/bodies.h"

#include <algorithm>

namespace zentavo {

std::size_t MemoryBody::Read(std::span<std::byte> buffer) {
  const auto piece = rest_.first(std::min(rest_.size(), buffer.size()));
  std::copy(piece.begin(), piece.end(), buffer.begin());
  rest_ = rest_.subspan(piece.size());
  return piece.size();
}

std::size_t StreamBody::Read(std::span<std::byte> buffer) {
  return static_cast<std::size_t>(stream_.Read(buffer.data(), std::ssize(buffer)));
}

}  // namespace zentavo
