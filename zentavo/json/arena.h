// The memory of a document: internal to the JSON classes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>

#include "zentavo/framework/text.h"
#include "zentavo/json/run.h"
#include "zentavo/json/slot.h"

namespace zentavo::json_internal {

// Cells and texts one behind the other in chunks of growing size. Nothing is freed before all is.
// The containers that lie in it share it.
class Arena {
 public:
  // `bytes` is what the first chunk should hold.
  explicit Arena(std::size_t bytes);
  Arena(const Arena&) = delete;
  Arena& operator=(const Arena&) = delete;
  ~Arena();

  Slot* TakeCells(std::size_t count) {
    const std::size_t bytes = count * sizeof(Slot);
    here_ += -reinterpret_cast<std::uintptr_t>(here_) & (alignof(Slot) - 1);
    if (bytes > static_cast<std::size_t>(end_ - here_)) AddChunk(bytes);
    std::byte* taken = here_;
    here_ += bytes;
    return reinterpret_cast<Slot*>(taken);
  }
  // Takes over cells that lie elsewhere; once at most.
  void Keep(std::unique_ptr<Slot, FreeMemory> cells) { kept_ = std::move(cells); }
  StringView AddText(StringView text);

  // A text of a size not known yet is written from Units() on, to UnitsEnd() at most, and ended by
  // EndText.
  char16_t* Units() { return reinterpret_cast<char16_t*>(here_); }
  const char16_t* UnitsEnd() const { return reinterpret_cast<const char16_t*>(end_); }
  void EndText(char16_t* end) { here_ = reinterpret_cast<std::byte*>(end); }
  // Moves such a text, of which `done` units are written, to where `need` more have room, and if
  // `most` can come, as many again as are written. Returns its new end.
  char16_t* MoveText(std::size_t done, std::size_t need, std::size_t most);

 private:
  struct Chunk {
    Chunk* previous;
  };

  // Makes room for `bytes` aligned for cells.
  void AddChunk(std::size_t bytes);

  std::unique_ptr<Slot, FreeMemory> kept_;
  Chunk* last_ = nullptr;
  std::byte* here_ = nullptr;  // never odd
  std::byte* end_ = nullptr;   // aligned for cells
  std::size_t next_bytes_;
};

using Document = std::shared_ptr<Arena>;

}  // namespace zentavo::json_internal
