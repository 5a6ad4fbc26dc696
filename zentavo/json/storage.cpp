#include "zentavo/json/storage.h"

#include <algorithm>
#include <functional>
#include <limits>
#include <utility>

#include "zentavo/framework/exception.h"

namespace zentavo::json_internal {

Storage::Storage(Storage&& other) noexcept : Storage(other.keyed_) {
  swap(other);
}

void Storage::swap(Storage& other) noexcept {
  std::swap(cells_, other.cells_);
  std::swap(block_, other.block_);
  std::swap(units_, other.units_);
  std::swap(units_end_, other.units_end_);
  std::swap(document_, other.document_);
  std::swap(count_, other.count_);
  std::swap(capacity_, other.capacity_);
  std::swap(owns_, other.owns_);
}

void Storage::Adopt(Document document, Slot* cells, std::uint32_t count, bool owns) {
  Clear();
  document_ = std::move(document);
  cells_ = cells;
  count_ = capacity_ = count;
  owns_ = owns;
}

void Storage::Allocate(std::size_t values, std::size_t units) {
  constexpr std::size_t kLimit = std::numeric_limits<std::uint32_t>::max() / 2;
  constexpr std::size_t kBytes = std::numeric_limits<std::size_t>::max() / 2;
  const std::size_t cells = Cells::Size(values, keyed_);
  if (values > kLimit || units > kLimit || cells > kBytes / sizeof(Slot) ||
      units > (kBytes - cells * sizeof(Slot)) / sizeof(char16_t)) {
    throw ERangeError(u"Range check error");
  }
  const std::size_t bytes = cells * sizeof(Slot) + units * sizeof(char16_t);
  block_ = std::make_unique_for_overwrite<std::byte[]>(bytes);
  cells_ = reinterpret_cast<Slot*>(block_.get());
  units_ = reinterpret_cast<char16_t*>(cells_ + cells);
  units_end_ = units_ + units;
  capacity_ = static_cast<std::uint32_t>(values);
}

bool Storage::HasText(const Slot& slot) const {
  const auto* start = reinterpret_cast<const char16_t*>(block_.get());
  return slot.kind == SlotKind::kText && !std::less<>()(slot.units, start) &&
         std::less<>()(slot.units, units_end_);
}

std::size_t Storage::CountUnits() const {
  std::size_t units = 0;
  for (const Slot* cell = All().First(); cell != All().End(); ++cell) {
    if (HasText(*cell)) units += cell->size;
  }
  return units;
}

Storage::OldBlock Storage::MakeRoom(std::uint32_t values, std::size_t units) {
  const std::size_t need = std::size_t{count_} + values;
  if (need <= capacity_ && units <= static_cast<std::size_t>(units_end_ - units_)) return nullptr;
  const std::size_t all_units = CountUnits() + units;
  Storage grown(keyed_);
  grown.Allocate(need <= capacity_ ? capacity_ : need + need / 2 + 1, all_units + all_units / 2);
  Slot* to = grown.cells_;
  for (const Slot* cell = All().First(); cell != All().End(); ++cell) {
    *to++ = HasText(*cell) ? grown.AddText(cell->Text()) : *cell;
  }
  grown.count_ = count_;
  grown.owns_ = owns_;
  grown.document_ = document_;
  swap(grown);
  return std::move(grown.block_);
}

Slot Storage::AddText(StringView text) {
  const Slot added = Slot::OfText({units_, text.size()});
  units_ = std::copy(text.begin(), text.end(), units_);
  return added;
}

void Storage::AddMember(const Slot& key, const Slot& value) {
  Slot* cells = cells_ + Cells::Size(count_++, true);
  cells[0] = key;
  cells[1] = value;
}

void Storage::Erase(std::uint32_t index) {
  const auto cells = static_cast<std::ptrdiff_t>(Cells::Size(1, keyed_));
  Slot* first = cells_ + Cells::Size(index, keyed_);
  std::copy(first + cells, cells_ + Cells::Size(count_, keyed_), first);
  --count_;
}

void Storage::Clear() noexcept {
  Storage empty(keyed_);
  swap(empty);
}

}  // namespace zentavo::json_internal
