#include "zentavo/threads_memory/sorted_list.h"

#include <utility>

namespace zentavo {

TXSortedList::TXSortedList(CompareFunction sort_compare, FindFunction find_compare)
    : SortCompare(std::move(sort_compare)), FindCompare(std::move(find_compare)) {}

TXSortedList::~TXSortedList() = default;

std::int32_t TXSortedList::Add(void* Item) {
  FSorted = false;
  return TList::Add(Item);
}

void* TXSortedList::FindItem(StringView Key) {
  if (!FSorted) Sort(SortCompare);
  void* found = nullptr;
  std::int32_t low = 0;
  std::int32_t high = Count() - 1;
  while (low <= high) {
    const std::int32_t middle = low + (high - low) / 2;
    const int order = FindCompare(Items(middle), Key);
    if (order == 0) found = Items(middle);
    if (order < 0) {
      low = middle + 1;
    } else {
      high = middle - 1;
    }
  }
  return found;
}

}  // namespace zentavo
