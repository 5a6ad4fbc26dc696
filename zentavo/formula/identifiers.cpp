#include "zentavo/formula/identifiers.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace zentavo {

TIdentList::TIdentList() {
  SetSorted(true);
  SetOwnsObjects(true);
}

void TIdentList::Changed() {
  ++version_;
  slots_.clear();
  TStringList::Changed();
}

void TIdentList::BuildIndex() const {
  slots_.assign(std::bit_ceil(static_cast<std::size_t>(Count()) * 2 + 2), {});
  slot_mask_ = slots_.size() - 1;
  for (std::int32_t item = 0; item < Count(); ++item) {
    const std::uint32_t hash = Hash(Strings(item));
    std::size_t at = hash & slot_mask_;
    while (slots_[at].name != nullptr) at = (at + 1) & slot_mask_;
    slots_[at] = {hash, &Strings(item), static_cast<const TIdentInfo*>(Objects(item))};
  }
}

bool TIdentList::Holds(const void* address) const {
  for (std::int32_t item = 0; item < Count(); ++item) {
    if (Objects(item) == address) return true;
  }
  return false;
}

void InsertInList(TIdentList& List, StringView Name, TTokenTypes TokenType, std::int32_t Id,
                  TResultTypes ResultType, void* Ptr) {
  List.AddObject(Name, std::make_unique<TIdentInfo>(TokenType, Id, ResultType, Ptr));
}

bool FindInList(const TIdentList& List, StringView Name, const TIdentInfo*& Info) {
  const TIdentInfo* found = List.Lookup(Name);
  if (found == nullptr) return false;
  Info = found;
  return true;
}

void FreeList(std::unique_ptr<TIdentList>& List) {
  List.reset();
}

}  // namespace zentavo
