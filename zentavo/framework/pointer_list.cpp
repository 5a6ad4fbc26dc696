#include "zentavo/framework/pointer_list.h"

#include <algorithm>
#include <string>

#include "zentavo/framework/exception.h"

namespace zentavo {

TList::~TList() = default;

void* TList::Items(std::int32_t index) const {
  CheckIndex(index, Count());
  return items_[static_cast<std::size_t>(index)];
}

void TList::SetItem(std::int32_t index, void* item) {
  CheckIndex(index, Count());
  items_[static_cast<std::size_t>(index)] = item;
}

std::int32_t TList::Add(void* item) {
  items_.push_back(item);
  return Count() - 1;
}

void TList::Insert(std::int32_t index, void* item) {
  CheckIndex(index, Count() + 1);
  items_.insert(items_.begin() + index, item);
}

void TList::Delete(std::int32_t index) {
  CheckIndex(index, Count());
  items_.erase(items_.begin() + index);
}

std::int32_t TList::Remove(void* item) {
  const std::int32_t index = IndexOf(item);
  if (index >= 0) Delete(index);
  return index;
}

std::int32_t TList::IndexOf(const void* item) const {
  const auto place = std::find(items_.begin(), items_.end(), item);
  return place == items_.end() ? -1 : static_cast<std::int32_t>(place - items_.begin());
}

// A stable sort also stays within the list when the caller's comparison contradicts itself.
void TList::Sort(const CompareFunction& compare) {
  const auto before = [&](void* item1, void* item2) { return compare(item1, item2) < 0; };
  if (std::is_sorted(items_.begin(), items_.end(), before)) return;
  std::stable_sort(items_.begin(), items_.end(), before);
}

void TList::CheckIndex(std::int32_t index, std::int32_t end) const {
  if (index >= 0 && index < end) return;
  throw EListError(u"List index out of bounds (" + FromUtf8(std::to_string(index)) + u")");
}

}  // namespace zentavo
