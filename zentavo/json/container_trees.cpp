// Copies and comparisons of whole trees, by lists of what is left to do instead of recursion.
#include <algorithm>
#include <numeric>
#include <typeinfo>
#include <vector>

#include "zentavo/json/array.h"
#include "zentavo/json/key_index.h"
#include "zentavo/json/object.h"
#include "zentavo/json/value_view.h"

namespace zentavo {

using json_internal::Access;
using json_internal::KeyMatches;
using json_internal::Slot;
using json_internal::SlotKind;
using json_internal::Storage;
using json_internal::ValueView;
using json_internal::ViewOf;

namespace {

bool OwnsObject(const Slot& slot) {
  return slot.kind == SlotKind::kBoxed || slot.kind == SlotKind::kContainer;
}

// Copies the slots of `from`; what they own follows in FillNext.
class Copier {
 public:
  void Start(const Storage& from, Storage& to) {
    for (std::uint32_t index = 0; index < from.Count(); ++index) {
      if (OwnsObject(to.At(index))) to.At(index) = Slot::Of(SlotKind::kMissing);
    }
    for (std::uint32_t index = 0; index < from.Count(); ++index) {
      if (OwnsObject(from.At(index))) left_.push_back({&from.At(index), &to.At(index)});
    }
  }

  void Finish() {
    while (!left_.empty()) {
      const Pair next = left_.back();
      left_.pop_back();
      const TZAbstractObject& source = *next.from->object;
      *next.to = Slot::OfObject(next.from->kind, CopyShell(source).release());
    }
  }

 private:
  struct Pair {
    const Slot* from;
    Slot* to;
  };

  // A copy of the value; of a container, one whose own values are still to be copied.
  std::unique_ptr<TZAbstractObject> CopyShell(const TZAbstractObject& source) {
    if (typeid(source) == typeid(TJSONObject)) return CopyContainer<TJSONObject>(source);
    if (typeid(source) == typeid(TJSONArray)) return CopyContainer<TJSONArray>(source);
    return source.Clone();
  }

  template <typename T>
  std::unique_ptr<TZAbstractObject> CopyContainer(const TZAbstractObject& source) {
    const Storage& from = Access::Of(static_cast<const T&>(source));
    auto copy = std::make_unique<T>();
    Storage slots(from);
    Start(from, slots);
    Access::Of(*copy).swap(slots);
    return copy;
  }

  std::vector<Pair> left_;
};

struct ContainerPair {
  const TJSONContainer* a;
  const TJSONContainer* b;
};

using Positions = std::vector<std::uint32_t>;

bool SameKeysInPlace(const Storage& a, const Storage& b) {
  for (std::uint32_t index = 0; index < a.Count(); ++index) {
    if (!KeyMatches(a.Key(index), b.Key(index))) return false;
  }
  return true;
}

Positions OrderOfKeys(const Storage& storage) {
  Positions order(storage.Count());
  std::iota(order.begin(), order.end(), 0u);
  std::stable_sort(order.begin(), order.end(), [&](std::uint32_t a, std::uint32_t b) {
    return CompareText(storage.Key(a), storage.Key(b)) < 0;
  });
  return order;
}

// Which values of two containers of one length belong together; false when their keys differ. Two
// empty lists stand for the order they are in.
bool PairUp(const ContainerPair& pair, Positions& order_a, Positions& order_b) {
  if (pair.a->Kind() == JSONKind::kArray) return true;
  const Storage& a = Access::Of(*pair.a);
  const Storage& b = Access::Of(*pair.b);
  if (SameKeysInPlace(a, b)) return true;
  order_a = OrderOfKeys(a);
  order_b = OrderOfKeys(b);
  return std::equal(order_a.begin(), order_a.end(), order_b.begin(),
                    [&](std::uint32_t left, std::uint32_t right) {
                      return KeyMatches(a.Key(left), b.Key(right));
                    });
}

bool IsContainer(const ValueView& value) {
  return value.kind == JSONKind::kObject || value.kind == JSONKind::kArray;
}

ContainerPair PairOf(const ValueView& a, const ValueView& b) {
  return {static_cast<const TJSONContainer*>(a.object),
          static_cast<const TJSONContainer*>(b.object)};
}

// Compares what stands directly in two containers and notes the containers in them.
bool ValuesEqual(const ContainerPair& pair, std::vector<ContainerPair>& left) {
  if (pair.a->Kind() != pair.b->Kind() || pair.a->length() != pair.b->length()) return false;
  Positions order_a;
  Positions order_b;
  if (!PairUp(pair, order_a, order_b)) return false;
  const Storage& a = Access::Of(*pair.a);
  const Storage& b = Access::Of(*pair.b);
  for (std::uint32_t index = 0; index < a.Count(); ++index) {
    const ValueView value_a = ViewOf(a.At(order_a.empty() ? index : order_a[index]), a);
    const ValueView value_b = ViewOf(b.At(order_b.empty() ? index : order_b[index]), b);
    if (IsContainer(value_a) && IsContainer(value_b)) {
      left.push_back(PairOf(value_a, value_b));
    } else if (!ScalarsEqual(value_a, value_b)) {
      return false;
    }
  }
  return true;
}

}  // namespace

TJSONContainer::TJSONContainer(const TJSONContainer& other)
    : TZAbstractObject(other), storage_(other.storage_) {
  Copier copier;
  try {
    copier.Start(other.storage_, storage_);
    copier.Finish();
  } catch (...) {
    FreeAll();
    throw;
  }
}

std::unique_ptr<TZAbstractObject> TJSONContainer::Clone() const {
  return TZAbstractObject::Clone();
}

bool TJSONContainer::equals(const TZAbstractObject& Value) const {
  const ValueView value = ViewOf(&Value);
  if (!IsContainer(value)) return false;
  std::vector<ContainerPair> left{PairOf(ViewOf(this), value)};
  while (!left.empty()) {
    const ContainerPair next = left.back();
    left.pop_back();
    if (next.a != next.b && !ValuesEqual(next, left)) return false;
  }
  return true;
}

// A sum, so that the order of an object's pairs does not show.
std::int32_t TJSONContainer::hash() const {
  auto sum = storage_.Count();
  for (std::uint32_t index = 0; index < storage_.Count(); ++index) {
    const ValueView value = View(index);
    if (IsContainer(value)) {
      sum += static_cast<std::uint32_t>(PairOf(value, value).a->length());
    } else {
      sum += static_cast<std::uint32_t>(HashOf(value));
    }
  }
  return static_cast<std::int32_t>(sum);
}

}  // namespace zentavo
