#include "zentavo/json/object.h"

#include <algorithm>
#include <utility>

#include "zentavo/framework/stream.h"
#include "zentavo/framework/string_list.h"
#include "zentavo/json/array.h"
#include "zentavo/json/key_index.h"
#include "zentavo/json/tokener.h"

namespace zentavo {

using json_internal::KeyIndex;
using json_internal::KeyMatches;
using json_internal::Slot;
using json_internal::SlotKind;
using json_internal::Storage;

namespace {

void CheckKey(StringView key) {
  if (key.data() == nullptr) throw NullPointerException(u"Null key.");
}

}  // namespace

TJSONObject::TJSONObject() : TJSONContainer(true) {}

TJSONObject::TJSONObject(const TStringList& Names) : TJSONObject() {
  for (std::int32_t index = 0; index < Names.Count(); ++index) {
    const TObject* attached = Names.OwnsObjects() ? Names.Objects(index) : nullptr;
    const auto* value = dynamic_cast<const TZAbstractObject*>(attached);
    put(Names[index], value != nullptr ? *value : Null());
  }
}

TJSONObject::TJSONObject(const TJSONObject& Source, const TStringList& Names) : TJSONObject() {
  for (std::int32_t index = 0; index < Names.Count(); ++index) {
    const std::optional<std::uint32_t> found = Source.Find(Names[index]);
    if (found) put(Source.storage_.Key(*found), *Source.Lend(*found));
  }
}

TJSONObject TJSONObject::FromStream(TStream& Source) {
  return FromUtf8(json_internal::RestOf(Source));
}

TJSONObject::TJSONObject(const TJSONObject& other) : TJSONContainer(other) {}
TJSONObject::TJSONObject(TJSONObject&& other) noexcept
    : TJSONContainer(std::move(other)),
      index_(std::move(other.index_)),
      scanned_(std::exchange(other.scanned_, 0)) {}
TJSONObject::~TJSONObject() = default;
TJSONObject& TJSONObject::operator=(TJSONObject other) noexcept {
  Swap(other);
  std::swap(index_, other.index_);
  std::swap(scanned_, other.scanned_);
  return *this;
}

const JNULL& TJSONObject::Null() {
  static const JNULL value;
  return value;
}

std::optional<std::uint32_t> TJSONObject::Find(StringView key) const {
  if (index_ != nullptr) return index_->Find(key, storage_);
  constexpr std::uint32_t kSmall = 12;     // an index does not pay below
  constexpr std::uint32_t kScansEach = 2;  // scanned keys that cost as much as one indexed key
  if (storage_.Count() <= kSmall || scanned_ / kScansEach < storage_.Count()) return Scan(key);
  index_ = std::make_unique<KeyIndex>(storage_);
  return index_->Find(key, storage_);
}

std::optional<std::uint32_t> TJSONObject::Scan(StringView key) const {
  for (std::uint32_t index = 0; index < storage_.Count(); ++index) {
    if (!KeyMatches(storage_.Key(index), key)) continue;
    scanned_ += index + 1;
    return index;
  }
  scanned_ += storage_.Count();
  return std::nullopt;
}

bool TJSONObject::has(StringView Key) const {
  if (Key.data() == nullptr) throw NullPointerException(u"Null key");
  return Find(Key).has_value();
}

TZAbstractObject* TJSONObject::opt(StringView Key) {
  return const_cast<TZAbstractObject*>(std::as_const(*this).opt(Key));
}
const TZAbstractObject* TJSONObject::opt(StringView Key) const {
  if (Key.data() == nullptr) throw NullPointerException(u"Null key");
  const std::optional<std::uint32_t> found = Find(Key);
  return found ? Lend(*found) : nullptr;
}

void TJSONObject::Append(StringView key) {
  storage_.AddMember(storage_.AddText(key), Slot::Of(SlotKind::kMissing));
  if (index_ != nullptr) index_->AddLast(storage_);
}

Storage::OldBlock TJSONObject::Place(StringView key, std::size_t units, std::uint32_t& index) {
  CheckKey(key);
  const std::optional<std::uint32_t> found = Find(key);
  Storage::OldBlock old = storage_.MakeRoom(found ? 0 : 1, units + (found ? 0 : key.size()));
  index = found ? *found : storage_.Count();
  if (!found) Append(key);
  return old;
}

TJSONObject& TJSONObject::PutSlot(StringView key, const Slot& slot) {
  std::uint32_t index;
  const Storage::OldBlock old = Place(key, 0, index);
  Free(index);
  storage_.At(index) = slot;
  return *this;
}

TJSONObject& TJSONObject::put(StringView Key, bool Value) {
  return PutSlot(Key, Slot::OfBoolean(Value));
}
TJSONObject& TJSONObject::put(StringView Key, double Value) {
  return PutSlot(Key, Slot::OfDouble(Value));
}
TJSONObject& TJSONObject::put(StringView Key, std::int32_t Value) {
  return PutSlot(Key, Slot::OfInteger(Value));
}

TJSONObject& TJSONObject::put(StringView Key, StringView Value) {
  std::uint32_t index;
  const Storage::OldBlock old = Place(Key, Value.size(), index);
  const Slot text = storage_.AddText(Value);
  Free(index);
  storage_.At(index) = text;
  return *this;
}

TJSONObject& TJSONObject::put(StringView Key, std::unique_ptr<TZAbstractObject> Value) {
  if (Value == nullptr) {
    remove(Key);
    return *this;
  }
  std::uint32_t index;
  const Storage::OldBlock old = Place(Key, 0, index);
  Own(index, std::move(Value));
  return *this;
}

TJSONObject& TJSONObject::put(StringView Key, const TZAbstractObject& Value) {
  return put(Key, Value.Clone());
}

TJSONObject& TJSONObject::putOpt(StringView Key, std::unique_ptr<TZAbstractObject> Value) {
  return Value == nullptr ? *this : put(Key, std::move(Value));
}

TJSONObject& TJSONObject::accumulate(StringView Key, std::unique_ptr<TZAbstractObject> Value) {
  CheckKey(Key);
  if (Value == nullptr) return *this;
  const std::optional<std::uint32_t> found = Find(Key);
  if (!found) return put(Key, std::move(Value));
  if (auto* array = dynamic_cast<TJSONArray*>(Lend(*found))) {
    array->put(std::move(Value));
    return *this;
  }
  auto both = std::make_unique<TJSONArray>();
  both->put(Take(*found)).put(std::move(Value));
  return put(Key, std::move(both));
}

std::unique_ptr<TZAbstractObject> TJSONObject::remove(StringView Key) {
  CheckKey(Key);
  const std::optional<std::uint32_t> found = Find(Key);
  if (!found) return nullptr;
  std::unique_ptr<TZAbstractObject> taken = Take(*found);
  storage_.Erase(*found);
  index_.reset();
  scanned_ = 0;
  return taken;
}

void TJSONObject::clean() {
  TJSONContainer::clean();
  index_.reset();
  scanned_ = 0;
}

std::vector<String> TJSONObject::keys() const {
  std::vector<String> all;
  all.reserve(storage_.Count());
  for (std::uint32_t index = 0; index < storage_.Count(); ++index) {
    all.emplace_back(storage_.Key(index));
  }
  return all;
}

TJSONArray TJSONObject::names() const {
  TJSONArray all;
  for (std::uint32_t index = 0; index < storage_.Count(); ++index) all.put(storage_.Key(index));
  return all;
}

TJSONArray TJSONObject::toJSONArray(const TJSONArray& Names) const {
  TJSONArray values;
  for (std::int32_t index = 0; index < Names.length(); ++index) {
    const TZAbstractObject* value = opt(Names.optString(index));
    values.put(value != nullptr ? value->Clone() : nullptr);
  }
  return values;
}

void TJSONObject::assignTo(TJSONObject& Target) const {
  if (&Target == this) return;
  for (std::uint32_t index = 0; index < storage_.Count(); ++index) {
    const StringView key = storage_.Key(index);
    std::unique_ptr<TZAbstractObject> copy = Lend(index)->Clone();
    if (Find(key) == index) {
      Target.put(key, std::move(copy));
    } else {
      const Storage::OldBlock old = Target.storage_.MakeRoom(1, key.size());
      Target.Append(key);
      Target.Own(Target.storage_.Count() - 1, std::move(copy));
    }
  }
}

std::unique_ptr<TZAbstractObject> TJSONObject::Clone() const {
  return std::make_unique<TJSONObject>(*this);
}
bool TJSONObject::instanceOf(const TZAbstractObject& Value) const {
  return dynamic_cast<const TJSONObject*>(&Value) != nullptr;
}
StringView TJSONObject::ClassName() const {
  return u"TJSONObject";
}

}  // namespace zentavo
