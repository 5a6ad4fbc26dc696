// How containers keep their values: internal to the JSON classes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "zentavo/framework/text.h"
#include "zentavo/json/arena.h"
#include "zentavo/json/slot.h"

namespace zentavo::json_internal {

// Cells, in the document they were read from or in a block of their own, which holds the texts
// added since too. It frees its memory, never the objects that slots own. Movable.
class Storage {
 public:
  // Keeps a block alive that a growing storage has left, and with it the views into it.
  using OldBlock = std::unique_ptr<std::byte[]>;

  explicit Storage(bool keyed) : keyed_(keyed) {}
  Storage(const Storage&) = delete;
  Storage(Storage&& other) noexcept;
  Storage& operator=(const Storage&) = delete;
  Storage& operator=(Storage&&) = delete;

  void swap(Storage& other) noexcept;
  // Takes over cells that lie in `document`; `owns` tells whether some own objects.
  void Adopt(Document document, Slot* cells, std::uint32_t count, bool owns);

  std::uint32_t Count() const { return count_; }
  Cells All() const { return {cells_, count_, keyed_}; }
  Slot& At(std::uint32_t index) const {
    return cells_[Cells::Size(index, keyed_) + (keyed_ ? 1 : 0)];
  }
  Slot& Last() const { return At(count_ - 1); }
  StringView Key(std::uint32_t index) const { return All().Key(index); }
  // What its nested containers lie in; null when it was not read.
  const Document& Home() const { return document_; }
  // False when no slot owns an object.
  bool Owns() const { return owns_; }
  void SetOwns() const { owns_ = true; }

  // Makes room for so many more values and units. Raises ERangeError "Range check error" beyond 32
  // bits.
  [[nodiscard]] OldBlock MakeRoom(std::uint32_t values, std::size_t units);
  // These need room.
  Slot AddText(StringView text);
  void Add(const Slot& value) { cells_[count_++] = value; }
  void AddMember(const Slot& key, const Slot& value);

  void Erase(std::uint32_t index);
  void RemoveLast() { --count_; }
  // Removes values from the end, up to the last that owns an object.
  void RemovePlainAtEnd() {
    if (!owns_) count_ = 0;
    while (count_ > 0 && !Last().IsOwned()) --count_;
  }
  void Clear() noexcept;

 private:
  void Allocate(std::size_t values, std::size_t units);
  bool HasText(const Slot& slot) const;  // one that lies in the block
  std::size_t CountUnits() const;        // of those texts

  Slot* cells_ = nullptr;
  OldBlock block_;
  char16_t* units_ = nullptr;  // of the block, not used yet
  char16_t* units_end_ = nullptr;
  Document document_;
  std::uint32_t count_ = 0;
  std::uint32_t capacity_ = 0;
  bool keyed_;
  mutable bool owns_ = false;
};

}  // namespace zentavo::json_internal
