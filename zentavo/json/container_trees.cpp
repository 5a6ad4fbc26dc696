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
using json_internal::Arena;
using json_internal::Cells;
using json_internal::Document;
using json_internal::KeyMatches;
using json_internal::Slot;
using json_internal::SlotKind;
using json_internal::Storage;
using json_internal::ValueView;
using json_internal::ViewOf;

namespace {

// Copies cells into a document of their own. Nested containers that are still as they were read
// stay so in the copy.
class Copier {
 public:
  explicit Copier(const Cells& all)
      : document_(std::make_shared<Arena>(static_cast<std::size_t>(all.End() - all.First()) *
                                          sizeof(Slot) * 2)) {}

  // What slots own follows in Finish.
  void Start(const Storage& from, Storage& to) {
    const std::size_t count = CellCount(from.All());
    Slot* cells = document_->TakeCells(count);
    CopyCells(from.All().First(), count, cells);
    to.Adopt(document_, cells, from.Count(), from.Owns());
  }

  void Finish() {
    while (!nested_.empty() || !owned_.empty()) {
      if (nested_.empty()) {
        CopyOwned();
      } else {
        CopyNested();
      }
    }
  }

 private:
  struct Pair {
    const Slot* from;
    Slot* to;
  };

  static std::size_t CellCount(const Cells& cells) {
    return Cells::Size(cells.Count(), cells.Keyed());
  }

  void CopyCells(const Slot* from, std::size_t count, Slot* to) {
    for (const Slot* end = from + count; from != end; ++from, ++to) {
      *to = *from;
      if (from->IsText()) {
        to->units = document_->AddText(from->Text()).data();
      } else if (from->IsNested()) {
        nested_.push_back({from, to});
      } else if (from->IsOwned()) {
        *to = Slot::Of(SlotKind::kMissing);
        owned_.push_back({from, to});
      }
    }
  }

  void CopyNested() {
    const Pair next = Pop(nested_);
    const std::size_t count = CellCount(Cells(*next.from));
    next.to->cells = document_->TakeCells(count);
    CopyCells(next.from->cells, count, next.to->cells);
  }

  void CopyOwned() {
    const Pair next = Pop(owned_);
    *next.to = Slot::OfObject(next.from->kind, CopyObject(*next.from->object).release());
  }

  static Pair Pop(std::vector<Pair>& pairs) {
    const Pair last = pairs.back();
    pairs.pop_back();
    return last;
  }

  // A copy of the value; of a container, one whose own values are still to be copied.
  std::unique_ptr<TZAbstractObject> CopyObject(const TZAbstractObject& source) {
    if (typeid(source) == typeid(TJSONObject)) return CopyContainer<TJSONObject>(source);
    if (typeid(source) == typeid(TJSONArray)) return CopyContainer<TJSONArray>(source);
    return source.Clone();
  }

  template <typename T>
  std::unique_ptr<TZAbstractObject> CopyContainer(const TZAbstractObject& source) {
    auto copy = std::make_unique<T>();
    Start(Access::Of(static_cast<const T&>(source)), Access::Of(*copy));
    return copy;
  }

  Document document_;
  std::vector<Pair> nested_;
  std::vector<Pair> owned_;
};

struct CellsPair {
  Cells a;
  Cells b;
};

using Positions = std::vector<std::uint32_t>;

bool SameKeysInPlace(const CellsPair& pair) {
  for (std::uint32_t index = 0; index < pair.a.Count(); ++index) {
    if (!KeyMatches(pair.a.Key(index), pair.b.Key(index))) return false;
  }
  return true;
}

Positions OrderOfKeys(const Cells& cells) {
  Positions order(cells.Count());
  std::iota(order.begin(), order.end(), 0u);
  std::stable_sort(order.begin(), order.end(), [&](std::uint32_t a, std::uint32_t b) {
    return CompareText(cells.Key(a), cells.Key(b)) < 0;
  });
  return order;
}

// Which values of two containers of one length belong together; false when their keys differ. Two
// empty lists stand for the order they are in.
bool PairUp(const CellsPair& pair, Positions& order_a, Positions& order_b) {
  if (!pair.a.Keyed() || SameKeysInPlace(pair)) return true;
  order_a = OrderOfKeys(pair.a);
  order_b = OrderOfKeys(pair.b);
  return std::equal(order_a.begin(), order_a.end(), order_b.begin(),
                    [&](std::uint32_t left, std::uint32_t right) {
                      return KeyMatches(pair.a.Key(left), pair.b.Key(right));
                    });
}

// Compares what stands directly in two containers and notes the containers in them.
bool ValuesEqual(const CellsPair& pair, std::vector<CellsPair>& left) {
  if (pair.a.Keyed() != pair.b.Keyed() || pair.a.Count() != pair.b.Count()) return false;
  if (pair.a.First() == pair.b.First()) return true;
  Positions order_a;
  Positions order_b;
  if (!PairUp(pair, order_a, order_b)) return false;
  for (std::uint32_t index = 0; index < pair.a.Count(); ++index) {
    const ValueView a = ViewOf(pair.a.Value(order_a.empty() ? index : order_a[index]));
    const ValueView b = ViewOf(pair.b.Value(order_b.empty() ? index : order_b[index]));
    if (a.IsContainer() && b.IsContainer()) {
      left.push_back({a.cells, b.cells});
    } else if (!ScalarsEqual(a, b)) {
      return false;
    }
  }
  return true;
}

}  // namespace

TJSONContainer::TJSONContainer(const TJSONContainer& other)
    : TZAbstractObject(other), storage_(other.storage_.All().Keyed()) {
  if (other.storage_.Count() == 0) return;
  Copier copier(other.storage_.All());
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
  if (!value.IsContainer()) return false;
  std::vector<CellsPair> left{{storage_.All(), value.cells}};
  while (!left.empty()) {
    const CellsPair next = left.back();
    left.pop_back();
    if (!ValuesEqual(next, left)) return false;
  }
  return true;
}

// A sum, so that the order of an object's pairs does not show.
std::int32_t TJSONContainer::hash() const {
  auto sum = storage_.Count();
  for (std::uint32_t index = 0; index < storage_.Count(); ++index) {
    sum += static_cast<std::uint32_t>(HashOf(View(index)));
  }
  return static_cast<std::int32_t>(sum);
}

}  // namespace zentavo
