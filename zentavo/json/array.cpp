#include "zentavo/json/array.h"

#include <utility>

#include "zentavo/framework/number_text.h"
#include "zentavo/framework/stream.h"
#include "zentavo/json/object.h"
#include "zentavo/json/tokener.h"
#include "zentavo/json/value_view.h"
#include "zentavo/json/writer.h"

namespace zentavo {

using json_internal::Slot;
using json_internal::SlotKind;
using json_internal::Storage;

TJSONArray::TJSONArray(std::vector<std::unique_ptr<TZAbstractObject>> List) : TJSONArray() {
  for (std::unique_ptr<TZAbstractObject>& value : List) put(std::move(value));
}

TJSONArray::TJSONArray(const std::vector<const TZAbstractObject*>& List) : TJSONArray() {
  for (const TZAbstractObject* value : List) put(value != nullptr ? value->Clone() : nullptr);
}

TJSONArray TJSONArray::FromStream(TStream& Source) {
  return FromUtf8(json_internal::RestOf(Source));
}

TZAbstractObject* TJSONArray::opt(std::int32_t Index) {
  return HasIndex(Index) ? Lend(static_cast<std::uint32_t>(Index)) : nullptr;
}
const TZAbstractObject* TJSONArray::opt(std::int32_t Index) const {
  return HasIndex(Index) ? Lend(static_cast<std::uint32_t>(Index)) : nullptr;
}

Storage::OldBlock TJSONArray::Place(std::int32_t index, std::size_t units) {
  if (index != length() && !HasIndex(index)) {
    throw NoSuchElementException(u"TJSONArray[" + IntToStr(index) + u"] not found.");
  }
  const bool appends = index == length();
  Storage::OldBlock old = storage_.MakeRoom(appends ? 1 : 0, units);
  if (appends) storage_.Add(Slot::Of(SlotKind::kMissing));
  return old;
}

TJSONArray& TJSONArray::PutSlot(std::int32_t index, const Slot& slot) {
  const Storage::OldBlock old = Place(index, 0);
  const auto position = static_cast<std::uint32_t>(index);
  Free(position);
  storage_.At(position) = slot;
  return *this;
}

TJSONArray& TJSONArray::put(std::int32_t Index, bool Value) {
  return PutSlot(Index, Slot::OfBoolean(Value));
}
TJSONArray& TJSONArray::put(std::int32_t Index, double Value) {
  return PutSlot(Index, Slot::OfDouble(Value));
}
TJSONArray& TJSONArray::put(std::int32_t Index, std::int32_t Value) {
  return PutSlot(Index, Slot::OfInteger(Value));
}
TJSONArray& TJSONArray::put(std::int32_t Index, StringView Value) {
  const Storage::OldBlock old = Place(Index, Value.size());
  const auto position = static_cast<std::uint32_t>(Index);
  const Slot text = storage_.AddText(Value);
  Free(position);
  storage_.At(position) = text;
  return *this;
}
TJSONArray& TJSONArray::put(std::int32_t Index, std::unique_ptr<TZAbstractObject> Value) {
  const Storage::OldBlock old = Place(Index, 0);
  Own(static_cast<std::uint32_t>(Index), std::move(Value));
  return *this;
}
TJSONArray& TJSONArray::put(std::int32_t Index, const TZAbstractObject& Value) {
  return put(Index, Value.Clone());
}

TJSONArray& TJSONArray::put(bool Value) {
  return put(length(), Value);
}
TJSONArray& TJSONArray::put(double Value) {
  return put(length(), Value);
}
TJSONArray& TJSONArray::put(std::int32_t Value) {
  return put(length(), Value);
}
TJSONArray& TJSONArray::put(StringView Value) {
  return put(length(), Value);
}
TJSONArray& TJSONArray::put(std::unique_ptr<TZAbstractObject> Value) {
  return put(length(), std::move(Value));
}
TJSONArray& TJSONArray::put(const TZAbstractObject& Value) {
  return put(length(), Value.Clone());
}

std::unique_ptr<TZAbstractObject> TJSONArray::remove(std::int32_t Index) {
  if (!HasIndex(Index)) return nullptr;
  const auto position = static_cast<std::uint32_t>(Index);
  std::unique_ptr<TZAbstractObject> taken = Take(position);
  storage_.Erase(position);
  return taken;
}

String TJSONArray::join(StringView Separator) const {
  String joined;
  for (std::uint32_t index = 0; index < storage_.Count(); ++index) {
    if (index > 0) joined += Separator;
    AppendValue(joined, storage_.At(index));
  }
  return joined;
}

TJSONObject TJSONArray::toJSONObject(const TJSONArray& Names) const {
  TJSONObject object;
  for (std::int32_t index = 0; index < Names.length(); ++index) {
    const TZAbstractObject* value = opt(index);
    object.put(Names.getString(index), value != nullptr ? value->Clone() : nullptr);
  }
  return object;
}

std::vector<const TZAbstractObject*> TJSONArray::toList() const {
  return {begin(), end()};
}

std::unique_ptr<TZAbstractObject> TJSONArray::Clone() const {
  return std::make_unique<TJSONArray>(*this);
}
bool TJSONArray::instanceOf(const TZAbstractObject& Value) const {
  return dynamic_cast<const TJSONArray*>(&Value) != nullptr;
}
StringView TJSONArray::ClassName() const {
  return u"TJSONArray";
}

}  // namespace zentavo
