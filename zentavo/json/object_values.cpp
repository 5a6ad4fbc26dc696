// The typed readings of an object's values.
#include <utility>

#include "zentavo/json/array.h"
#include "zentavo/json/object.h"
#include "zentavo/json/text_form.h"
#include "zentavo/json/value_view.h"

namespace zentavo {

using json_internal::ValueView;

namespace {

String Complaint(StringView key, StringView end) {
  return u"TJSONObject[" + quote(key) + u"]" + String(end);
}

}  // namespace

bool TJSONObject::isNull(StringView Key) const {
  return ViewAt(Key).kind == JSONKind::kNull;
}

std::uint32_t TJSONObject::Demand(StringView key) const {
  if (key.data() == nullptr) throw NullPointerException(u"Null key");
  const std::optional<std::uint32_t> found = Find(key);
  if (!found) throw NoSuchElementException(Complaint(key, u" not found."));
  return *found;
}

ValueView TJSONObject::ViewAt(StringView key) const {
  if (key.data() == nullptr) throw NullPointerException(u"Null key");
  const std::optional<std::uint32_t> found = Find(key);
  return found ? View(*found) : ValueView{.missing = true};
}

const TZAbstractObject& TJSONObject::get(StringView Key) const {
  return *Lend(Demand(Key));
}
TZAbstractObject& TJSONObject::get(StringView Key) {
  return *Lend(Demand(Key));
}

bool TJSONObject::getBoolean(StringView Key) const {
  const std::optional<bool> value = ReadBoolean(View(Demand(Key)));
  if (!value) throw ClassCastException(Complaint(Key, u" is not a Boolean."));
  return *value;
}

double TJSONObject::getDouble(StringView Key) const {
  const std::optional<double> value = ReadDouble(View(Demand(Key)));
  if (!value) throw NumberFormatException(Complaint(Key, u" is not a number."));
  return *value;
}

std::int32_t TJSONObject::getInt(StringView Key) const {
  const std::optional<std::int32_t> value = ReadInt(View(Demand(Key)));
  if (!value) throw NumberFormatException(Complaint(Key, u" is not a number."));
  return *value;
}

const TJSONArray& TJSONObject::getJSONArray(StringView Key) const {
  const auto* array = dynamic_cast<const TJSONArray*>(&get(Key));
  if (array == nullptr) throw ClassCastException(Complaint(Key, u" is not a TJSONArray."));
  return *array;
}
TJSONArray& TJSONObject::getJSONArray(StringView Key) {
  return const_cast<TJSONArray&>(std::as_const(*this).getJSONArray(Key));
}

const TJSONObject& TJSONObject::getJSONObject(StringView Key) const {
  const auto* object = dynamic_cast<const TJSONObject*>(&get(Key));
  if (object == nullptr) throw ClassCastException(Complaint(Key, u" is not a TJSONObject."));
  return *object;
}
TJSONObject& TJSONObject::getJSONObject(StringView Key) {
  return const_cast<TJSONObject&>(std::as_const(*this).getJSONObject(Key));
}

String TJSONObject::getString(StringView Key) const {
  return ReadText(View(Demand(Key)));
}

bool TJSONObject::optBoolean(StringView Key, bool Default) const {
  return ReadBoolean(ViewAt(Key)).value_or(Default);
}
double TJSONObject::optDouble(StringView Key, double Default) const {
  return ReadDouble(ViewAt(Key)).value_or(Default);
}
std::int32_t TJSONObject::optInt(StringView Key, std::int32_t Default) const {
  return ReadIntOr(ViewAt(Key), Default);
}
const TJSONArray* TJSONObject::optJSONArray(StringView Key) const {
  return dynamic_cast<const TJSONArray*>(opt(Key));
}
TJSONArray* TJSONObject::optJSONArray(StringView Key) {
  return dynamic_cast<TJSONArray*>(opt(Key));
}
const TJSONObject* TJSONObject::optJSONObject(StringView Key) const {
  return dynamic_cast<const TJSONObject*>(opt(Key));
}
TJSONObject* TJSONObject::optJSONObject(StringView Key) {
  return dynamic_cast<TJSONObject*>(opt(Key));
}
String TJSONObject::optString(StringView Key, StringView Default) const {
  const ValueView value = ViewAt(Key);
  return value.missing ? String(Default) : ReadText(value);
}

}  // namespace zentavo
