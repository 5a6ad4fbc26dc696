// The delayed items of a pool: internal to it.
#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include "zentavo/threads_memory/work_item.h"

namespace zentavo {

// By due time, those of one due time in the order they came. Owns none of them.
class DelayedItems {
 public:
  bool Empty() const { return items_.empty(); }
  std::uint32_t FirstDue() const { return items_.begin()->first; }

  // Returns whether the item went to the front.
  bool Add(std::uint32_t due, TXWorkItem* item);
  // Takes back the item that went to the front last.
  void RemoveFront() { items_.erase(items_.begin()); }
  // Moves the items that are due up to the tick count `last` to `taken`, the last one first.
  void TakeUpTo(std::uint32_t last, std::vector<TXWorkItem*>& taken);

 private:
  // Orders tick counts that lie less than half their range apart, across the wrap to 0.
  struct EarlierTick {
    bool operator()(std::uint32_t a, std::uint32_t b) const {
      return static_cast<std::int32_t>(a - b) < 0;
    }
  };

  // Many items share a millisecond when there are many.
  std::map<std::uint32_t, std::vector<TXWorkItem*>, EarlierTick> items_;
};

}  // namespace zentavo
