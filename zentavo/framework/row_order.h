// The order of a table's rows.
//
// Rows are known by their slots, which do not move. Finding a row by its place, the place of a row,
// inserting and erasing anywhere cost the logarithm of the table; neighbours of the row last asked
// for are free. Used by one thread at a time.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "zentavo/platform/export.h"

namespace zentavo {

using RowSlot = std::uint32_t;
inline constexpr RowSlot kNoSlot = 0xFFFFFFFF;

// Neighbouring rows, the first of which stands at `first`. Valid until the order changes.
struct RowRun {
  std::int64_t first = 0;
  std::span<const RowSlot> rows;
};

class ZENTAVO_API RowOrder {
 public:
  RowOrder();
  ~RowOrder();
  RowOrder(const RowOrder&) = delete;
  RowOrder& operator=(const RowOrder&) = delete;

  std::int64_t Size() const { return size_; }
  // The slot at `position`, 0..Size() - 1.
  RowSlot At(std::int64_t position) const;
  // The row at `position`, 0..Size() - 1, among its neighbours.
  RowRun RunAt(std::int64_t position) const;
  // Where `slot`, which must be in the order, stands.
  std::int64_t PositionOf(RowSlot slot) const;
  // Puts `slot` in front of what stands at `position`, 0..Size().
  void Insert(std::int64_t position, RowSlot slot);
  void Erase(std::int64_t position);
  void Clear();

 private:
  // Neighbouring rows; at least one.
  struct Chunk {
    std::vector<RowSlot> slots;
    std::size_t index = 0;
  };
  struct Place {
    std::size_t chunk = 0;
    std::size_t offset = 0;
  };

  Place Find(std::int64_t position) const;
  std::int64_t FirstOf(std::size_t chunk) const;
  void AddChunk(std::size_t index);
  void Split(std::size_t index);
  void Count(std::size_t index, std::int64_t rows);
  void Recount();
  void Own(Chunk& chunk, RowSlot slot);

  std::int64_t size_ = 0;
  std::vector<std::unique_ptr<Chunk>> chunks_;
  std::vector<std::int64_t> counts_;  // a Fenwick tree over the chunks' sizes, from index 1
  std::vector<Chunk*> chunk_of_;      // by slot
  // The chunk of the row asked for last.
  mutable std::size_t near_chunk_ = 0;
  mutable std::int64_t near_first_ = 0;
};

}  // namespace zentavo
