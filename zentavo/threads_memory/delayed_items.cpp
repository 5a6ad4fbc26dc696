#include "zentavo/threads_memory/delayed_items.h"

#include <iterator>

namespace zentavo {

bool DelayedItems::Add(std::uint32_t due, TXWorkItem* item) {
  std::vector<TXWorkItem*>& same = items_[due];
  same.push_back(item);
  return same.size() == 1 && &same == &items_.begin()->second;
}

void DelayedItems::TakeUpTo(std::uint32_t last, std::vector<TXWorkItem*>& taken) {
  const auto end = items_.upper_bound(last);
  for (auto group = std::make_reverse_iterator(end); group != items_.rend(); ++group) {
    taken.insert(taken.end(), group->second.rbegin(), group->second.rend());
  }
  items_.erase(items_.begin(), end);
}

}  // namespace zentavo
