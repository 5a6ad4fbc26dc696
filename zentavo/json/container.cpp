#include "zentavo/json/container.h"

#include <algorithm>

#include "zentavo/framework/stream.h"
#include "zentavo/json/value_view.h"
#include "zentavo/json/writer.h"

namespace zentavo {

using json_internal::Slot;
using json_internal::SlotKind;
using json_internal::Storage;
using json_internal::TextBuffer;
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

// A value of its own for a slot that holds a number or a text.
std::unique_ptr<TZAbstractObject> Boxed(const Slot& slot, const Storage& storage) {
  switch (slot.kind) {
    case SlotKind::kInteger: return std::make_unique<_Integer>(slot.integer);
    case SlotKind::kDouble: return std::make_unique<_Double>(slot.number);
    default: return std::make_unique<_String>(String(storage.Text(slot.text)));
  }
}

void DropText(const Storage& storage, const Slot& slot) {
  if (slot.kind == SlotKind::kText) storage.DropText(slot.text);
}

}  // namespace

TJSONContainer::~TJSONContainer() {
  FreeAll();
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
      above = static_cast<TJSONContainer*>(outer.At(outer.Count() - 1).object);
      outer.RemoveLast();
      continue;
    }
    Slot& last = storage.At(storage.Count() - 1);
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
  return ViewOf(storage_.At(index), storage_);
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
  TZAbstractObject* boxed = Boxed(slot, storage_).release();
  DropText(storage_, slot);
  slot = Slot::OfObject(SlotKind::kBoxed, boxed);
  return boxed;
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
  DropText(storage_, slot);
  if (slot.kind == SlotKind::kBoxed || slot.kind == SlotKind::kContainer) delete slot.object;
  slot = Slot::Of(SlotKind::kMissing);
}

Slot TJSONContainer::Owned(std::unique_ptr<TZAbstractObject> value) {
  if (value == nullptr) return Slot::Of(SlotKind::kMissing);
  const bool is_container = dynamic_cast<TJSONContainer*>(value.get()) != nullptr;
  return Slot::OfObject(is_container ? SlotKind::kContainer : SlotKind::kBoxed, value.release());
}

String TJSONContainer::toString() const {
  TextBuffer out;
  AppendValue(out, json_internal::ViewOf(this));
  return String(out.View());
}

String TJSONContainer::toString(std::int32_t IndentFactor, std::int32_t Indent) const {
  TextBuffer out;
  AppendValue(out, json_internal::ViewOf(this), json_internal::Indentation{IndentFactor, Indent});
  return String(out.View());
}

AnsiString TJSONContainer::toUtf8() const {
  TextBuffer out;
  AppendValue(out, json_internal::ViewOf(this));
  AnsiString bytes(out.Size(), '\0');
  std::transform(out.View().begin(), out.View().end(), bytes.begin(),
                 [](char16_t unit) { return static_cast<char>(unit); });
  return bytes;
}

void TJSONContainer::SaveToStream(TStream& Target) const {
  const AnsiString bytes = toUtf8();
  Target.WriteBuffer(bytes.data(), static_cast<std::int64_t>(bytes.size()));
}

}  // namespace zentavo
