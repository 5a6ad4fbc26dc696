// A pointer list that a caller's comparison sorts and a caller's key searches.
//
//   TXSortedList list(ByName, NameAgainstKey);
//   list.Add(&customer);
//   void* found = list.FindItem(u"ALPHA");
//
// A list is used by one thread at a time and does not own its items.
#pragma once

#include <functional>

#include "zentavo/framework/pointer_list.h"
#include "zentavo/framework/text.h"

namespace zentavo {

class ZENTAVO_API TXSortedList : public TList {
 public:
  // Below, equal to or above 0, as the item is ordered before, with or after the key.
  using FindFunction = std::function<int(void* item, StringView key)>;

  TXSortedList(CompareFunction sort_compare, FindFunction find_compare);
  ~TXSortedList() override;

  std::int32_t Add(void* Item);  // returns its index until the next search

  // The first item in sorted order that compares equal to `Key`, null when there is none. Every
  // search sorts the list again, so items may change their order between searches; callers rely on
  // it.
  void* FindItem(StringView Key);

  CompareFunction SortCompare;
  FindFunction FindCompare;

 protected:
  // A descendant that keeps the order itself sets this to spare the sorting; Add resets it.
  bool FSorted = false;
};

}  // namespace zentavo
