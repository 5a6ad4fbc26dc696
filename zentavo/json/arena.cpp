#include "zentavo/json/arena.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>

#include "zentavo/json/short_key.h"

namespace zentavo::json_internal {

namespace {

constexpr std::size_t kLeastBytes = 128;
constexpr std::size_t kMostBytes = std::size_t{256}
                                   << 10;  // of a chunk, unless one value needs more

constexpr std::size_t RoundUp(std::size_t bytes) {
  return (bytes + alignof(Slot) - 1) / alignof(Slot) * alignof(Slot);
}

}  // namespace

Arena::Arena(std::size_t bytes) : next_bytes_(std::clamp(bytes, kLeastBytes, kMostBytes)) {
  AddChunk(0);
}

Arena::~Arena() {
  while (last_ != nullptr) {
    Chunk* previous = last_->previous;
    std::free(last_);
    last_ = previous;
  }
}

void Arena::AddChunk(std::size_t bytes) {
  constexpr std::size_t kHeader = RoundUp(sizeof(Chunk));
  constexpr std::size_t kReadable = kMostOfShortKey * sizeof(char16_t);  // behind a short key
  if (bytes > std::numeric_limits<std::size_t>::max() / 2) throw std::bad_alloc();
  const std::size_t size = RoundUp(std::max(bytes, next_bytes_));
  auto* chunk = static_cast<Chunk*>(std::malloc(kHeader + size + kReadable));
  if (chunk == nullptr) throw std::bad_alloc();
  chunk->previous = last_;
  last_ = chunk;
  here_ = reinterpret_cast<std::byte*>(chunk) + kHeader;
  end_ = here_ + size;
  next_bytes_ = std::min(next_bytes_ * 2, kMostBytes);
}

StringView Arena::AddText(StringView text) {
  if (text.size() > static_cast<std::size_t>(UnitsEnd() - Units())) {
    AddChunk(text.size() * sizeof(char16_t));
  }
  char16_t* start = Units();
  EndText(std::copy(text.begin(), text.end(), start));
  return {start, text.size()};
}

char16_t* Arena::MoveText(std::size_t done, std::size_t need, std::size_t most) {
  constexpr std::size_t kFew = 64;
  const char16_t* start = Units();
  const std::size_t more = std::max(need, std::min(most, std::max(done, kFew)));
  AddChunk((done + more) * sizeof(char16_t));
  return std::copy_n(start, done, Units());
}

}  // namespace zentavo::json_internal
