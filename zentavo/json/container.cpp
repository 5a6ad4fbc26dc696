#include "zentavo/json/container.h"

#include <utility>

#include "zentavo/framework/stream.h"
#include "zentavo/json/array.h"
#include "zentavo/json/object.h"
#include "zentavo/json/text_form.h"
#include "zentavo/json/value_view.h"
#include "zentavo/json/writer.h"

namespace zentavo {

using json_internal::Slot;
using json_internal::SlotKind;
using json_internal::Storage;
using json_internal::ValueView;

namespace {

template <typename T>
TZAbstractObject* Shared(const T& value) {
  return const_cast<T*>(&value);  // it has no operation that changes it
}

const JNULL& SharedNull() {
  static const JNULL value;
  return value;
}

// A value of its own for a slot that holds a number, a text or a nested container.
std::unique_ptr<TZAbstractObject> Boxed(const Slot& slot, const Storage& storage) {
  switch (slot.kind) {
    case SlotKind::kInteger: return std::make_unique<_Integer>(slot.integer);
    case SlotKind::kDouble: return std::make_unique<_Double>(slot.number);
    case SlotKind::kDecimal: return std::make_unique<_Double>(slot.DecimalValue());
    case SlotKind::kText: return std::make_unique<_String>(String(slot.Text()));
    default: return json_internal::MakeContainer(slot, storage.Home());
  }
}

}  // namespace

TJSONContainer::TJSONContainer(TJSONContainer&& other) noexcept
    : storage_(std::move(other.storage_)) {}

TJSONContainer::~TJSONContainer() {
  FreeAll();
}

void TJSONContainer::Swap(TJSONContainer& other) noexcept {
  storage_.swap(other.storage_);
}

// While a nested container is being freed, the slot that held it keeps the way back to the
// container above its own.
void TJSONContainer::FreeAll() noexcept {
  TJSONContainer* current = this;
  TJSONContainer* above = nullptr;
  for (;;) {
    Storage& storage = current->storage_;
    storage.RemovePlainAtEnd();
    if (storage.Count() == 0) {
      if (above == nullptr) break;
      const std::unique_ptr<TJSONContainer> emptied(current);
      current = above;
      Storage& outer = current->storage_;
      above = static_cast<TJSONContainer*>(outer.Last().object);
      outer.RemoveLast();
      continue;
    }
    Slot& last = storage.Last();
    if (last.kind == SlotKind::kContainer) {
      auto* inner = static_cast<TJSONContainer*>(last.object);
      last.object = above;
      above = current;
      current = inner;
      continue;
    }
    delete last.object;
    storage.RemoveLast();
  }
  storage_.Clear();
}

void TJSONContainer::clean() {
  FreeAll();
}

ValueView TJSONContainer::View(std::uint32_t index) const {
  return ViewOf(storage_.At(index));
}

TZAbstractObject* TJSONContainer::Lend(std::uint32_t index) const {
  Slot& slot = storage_.At(index);
  switch (slot.kind) {
    case SlotKind::kMissing: return nullptr;
    case SlotKind::kNull: return Shared(SharedNull());
    case SlotKind::kFalse: return Shared(_Boolean::_FALSE());
    case SlotKind::kTrue: return Shared(_Boolean::_TRUE());
    case SlotKind::kBoxed:
    case SlotKind::kContainer: return slot.object;
    default: break;
  }
  const SlotKind kind = slot.IsNested() ? SlotKind::kContainer : SlotKind::kBoxed;
  storage_.SetOwns();
  slot = Slot::OfObject(kind, Boxed(slot, storage_).release());
  return slot.object;
}

std::unique_ptr<TZAbstractObject> TJSONContainer::Take(std::uint32_t index) {
  Slot& slot = storage_.At(index);
  std::unique_ptr<TZAbstractObject> taken;
  if (slot.kind == SlotKind::kNull) {
    taken = std::make_unique<JNULL>();
  } else if (slot.kind == SlotKind::kTrue || slot.kind == SlotKind::kFalse) {
    taken = std::make_unique<_Boolean>(slot.kind == SlotKind::kTrue);
  } else {
    taken.reset(Lend(index));
  }
  slot = Slot::Of(SlotKind::kMissing);
  return taken;
}

void TJSONContainer::Free(std::uint32_t index) noexcept {
  Slot& slot = storage_.At(index);
  if (slot.IsOwned()) delete slot.object;
  slot = Slot::Of(SlotKind::kMissing);
}

void TJSONContainer::Own(std::uint32_t index, std::unique_ptr<TZAbstractObject> value) {
  Free(index);
  if (value == nullptr) return;
  const bool is_container = dynamic_cast<TJSONContainer*>(value.get()) != nullptr;
  const SlotKind kind = is_container ? SlotKind::kContainer : SlotKind::kBoxed;
  storage_.SetOwns();
  storage_.At(index) = Slot::OfObject(kind, value.release());
}

String TJSONContainer::toString() const {
  return valueToString(this);
}

String TJSONContainer::toString(std::int32_t IndentFactor, std::int32_t Indent) const {
  return valueToString(this, IndentFactor, Indent);
}

AnsiString TJSONContainer::toUtf8() const {
  return json_internal::WrittenUtf8(json_internal::SlotOf(this));
}

void TJSONContainer::SaveToStream(TStream& Target) const {
  const AnsiString bytes = toUtf8();
  Target.WriteBuffer(bytes.data(), static_cast<std::int64_t>(bytes.size()));
}

namespace json_internal {

std::unique_ptr<TJSONContainer> MakeContainer(const Slot& nested, Document document) {
  std::unique_ptr<TJSONContainer> container;
  if (nested.kind == SlotKind::kObject) {
    container = std::make_unique<TJSONObject>();
  } else {
    container = std::make_unique<TJSONArray>();
  }
  Access::Of(*container).Adopt(std::move(document), nested.cells, nested.size, false);
  return container;
}

}  // namespace json_internal

}  // namespace zentavo
