// An ordered list of pointers to what the caller owns.
//
// A list is used by one thread at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

#include "zentavo/framework/object.h"

namespace zentavo {

// Neither copied nor moved. An index out of range raises EListError "List index out of bounds
// (%d)".
class ZENTAVO_API TList : public TObject {
 public:
  // Below, equal to or above 0, as the first item is ordered before, with or after the second.
  using CompareFunction = std::function<int(void* item1, void* item2)>;

  TList() = default;
  TList(const TList&) = delete;
  TList& operator=(const TList&) = delete;
  ~TList() override;

  std::int32_t Count() const { return static_cast<std::int32_t>(items_.size()); }
  void* Items(std::int32_t index) const;
  void* operator[](std::int32_t index) const { return Items(index); }
  void SetItem(std::int32_t index, void* item);

  std::int32_t Add(void* item);  // returns its index
  void Insert(std::int32_t index, void* item);
  void Delete(std::int32_t index);
  // Removes the first such item and returns its index, -1 when there is none.
  std::int32_t Remove(void* item);
  void Clear() { items_.clear(); }
  std::int32_t IndexOf(const void* item) const;  // -1 when it is not there

  // Keeps the order of equal items.
  void Sort(const CompareFunction& compare);

 private:
  void CheckIndex(std::int32_t index, std::int32_t end) const;

  std::vector<void*> items_;
};

}  // namespace zentavo
