#include "zentavo/framework/row_order.h"

#include <algorithm>
#include <bit>

namespace zentavo {

namespace {

constexpr std::size_t kMostRows = 1024;  // of a chunk

}  // namespace

RowOrder::RowOrder() {
  Clear();
}
RowOrder::~RowOrder() = default;

void RowOrder::Clear() {
  size_ = 0;
  near_chunk_ = 0;
  near_first_ = 0;
  chunks_.clear();
  chunk_of_.clear();
  counts_.assign(1, 0);
}

RowSlot RowOrder::At(std::int64_t position) const {
  const Place place = Find(position);
  return chunks_[place.chunk]->slots[place.offset];
}

RowRun RowOrder::RunAt(std::int64_t position) const {
  const Place place = Find(position);
  return {near_first_, chunks_[place.chunk]->slots};
}

RowOrder::Place RowOrder::Find(std::int64_t position) const {
  if (near_chunk_ < chunks_.size()) {
    const std::int64_t offset = position - near_first_;
    const auto count = static_cast<std::int64_t>(chunks_[near_chunk_]->slots.size());
    if (offset >= 0 && offset < count) return {near_chunk_, static_cast<std::size_t>(offset)};
  }
  std::size_t chunk = 0;
  std::int64_t first = 0;
  for (std::size_t step = std::bit_floor(chunks_.size()); step > 0; step /= 2) {
    if (chunk + step < counts_.size() && first + counts_[chunk + step] <= position) {
      chunk += step;
      first += counts_[chunk];
    }
  }
  near_chunk_ = chunk;
  near_first_ = first;
  return {chunk, static_cast<std::size_t>(position - first)};
}

std::int64_t RowOrder::FirstOf(std::size_t chunk) const {
  std::int64_t first = 0;
  for (std::size_t at = chunk; at > 0; at &= at - 1) first += counts_[at];
  return first;
}

std::int64_t RowOrder::PositionOf(RowSlot slot) const {
  const Chunk& chunk = *chunk_of_[slot];
  const auto place = std::find(chunk.slots.begin(), chunk.slots.end(), slot);
  return FirstOf(chunk.index) + (place - chunk.slots.begin());
}

void RowOrder::Own(Chunk& chunk, RowSlot slot) {
  if (slot >= chunk_of_.size()) {
    chunk_of_.resize(std::max<std::size_t>(std::size_t{slot} + 1, chunk_of_.size() * 2));
  }
  chunk_of_[slot] = &chunk;
}

void RowOrder::Count(std::size_t index, std::int64_t rows) {
  for (std::size_t at = index + 1; at < counts_.size(); at += at & (0 - at)) counts_[at] += rows;
}

void RowOrder::Recount() {
  counts_.assign(chunks_.size() + 1, 0);
  for (std::size_t i = 0; i < chunks_.size(); ++i) {
    chunks_[i]->index = i;
    Count(i, static_cast<std::int64_t>(chunks_[i]->slots.size()));
  }
  near_chunk_ = chunks_.size();
}

void RowOrder::AddChunk(std::size_t index) {
  auto chunk = std::make_unique<Chunk>();
  chunk->slots.reserve(kMostRows);
  chunks_.insert(chunks_.begin() + static_cast<std::ptrdiff_t>(index), std::move(chunk));
}

void RowOrder::Split(std::size_t index) {
  AddChunk(index + 1);
  std::vector<RowSlot>& front = chunks_[index]->slots;
  Chunk& back = *chunks_[index + 1];
  back.slots.assign(front.begin() + kMostRows / 2, front.end());
  front.resize(kMostRows / 2);
  for (const RowSlot slot : back.slots) chunk_of_[slot] = &back;
  Recount();
}

void RowOrder::Insert(std::int64_t position, RowSlot slot) {
  Place place;
  if (position < size_) {
    place = Find(position);
    if (chunks_[place.chunk]->slots.size() == kMostRows) {
      Split(place.chunk);
      place = Find(position);
    }
  } else {
    // Rows that are appended fill their chunks.
    if (chunks_.empty() || chunks_.back()->slots.size() == kMostRows) {
      AddChunk(chunks_.size());
      Recount();
    }
    place = {chunks_.size() - 1, chunks_.back()->slots.size()};
  }
  Chunk& chunk = *chunks_[place.chunk];
  Own(chunk, slot);
  chunk.slots.insert(chunk.slots.begin() + static_cast<std::ptrdiff_t>(place.offset), slot);
  Count(place.chunk, 1);
  ++size_;
}

void RowOrder::Erase(std::int64_t position) {
  const Place place = Find(position);
  std::vector<RowSlot>& slots = chunks_[place.chunk]->slots;
  slots.erase(slots.begin() + static_cast<std::ptrdiff_t>(place.offset));
  Count(place.chunk, -1);
  --size_;
  if (slots.empty()) {
    chunks_.erase(chunks_.begin() + static_cast<std::ptrdiff_t>(place.chunk));
    Recount();
  }
}

}  // namespace zentavo
