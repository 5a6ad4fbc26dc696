// The typed readings of an array's values.
#include <utility>

#include "zentavo/framework/number_text.h"
#include "zentavo/json/array.h"
#include "zentavo/json/object.h"
#include "zentavo/json/value_view.h"

namespace zentavo {

using json_internal::ValueView;

namespace {

String Complaint(std::int32_t index, StringView end, StringView start = u"TJSONArray[") {
  return String(start) + IntToStr(index) + u"]" + String(end);
}

// The wording of objects; callers rely on it.
[[noreturn]] void RaiseNoNumber(std::int32_t index) {
  throw NumberFormatException(Complaint(index, u" is not a number.", u"TJSONObject["));
}

}  // namespace

ValueView TJSONArray::ViewAt(std::int32_t index) const {
  if (!HasIndex(index)) return ValueView{.missing = true};
  return View(static_cast<std::uint32_t>(index));
}

std::uint32_t TJSONArray::Demand(std::int32_t index) const {
  if (ViewAt(index).missing) throw NoSuchElementException(Complaint(index, u" not found."));
  return static_cast<std::uint32_t>(index);
}

bool TJSONArray::isNull(std::int32_t Index) const {
  return ViewAt(Index).kind == JSONKind::kNull;
}

const TZAbstractObject& TJSONArray::get(std::int32_t Index) const {
  return *Lend(Demand(Index));
}
TZAbstractObject& TJSONArray::get(std::int32_t Index) {
  return *Lend(Demand(Index));
}

bool TJSONArray::getBoolean(std::int32_t Index) const {
  const std::optional<bool> value = ReadBoolean(View(Demand(Index)));
  if (!value) throw ClassCastException(Complaint(Index, u" not a Boolean."));
  return *value;
}

double TJSONArray::getDouble(std::int32_t Index) const {
  const std::optional<double> value = ReadDouble(View(Demand(Index)));
  if (!value) RaiseNoNumber(Index);
  return *value;
}

std::int32_t TJSONArray::getInt(std::int32_t Index) const {
  const std::optional<std::int32_t> value = ReadInt(View(Demand(Index)));
  if (!value) RaiseNoNumber(Index);
  return *value;
}

const TJSONArray& TJSONArray::getJSONArray(std::int32_t Index) const {
  const auto* array = dynamic_cast<const TJSONArray*>(&get(Index));
  if (array == nullptr) throw ClassCastException(Complaint(Index, u" is not a TJSONArray."));
  return *array;
}
TJSONArray& TJSONArray::getJSONArray(std::int32_t Index) {
  return const_cast<TJSONArray&>(std::as_const(*this).getJSONArray(Index));
}

const TJSONObject& TJSONArray::getJSONObject(std::int32_t Index) const {
  const auto* object = dynamic_cast<const TJSONObject*>(&get(Index));
  if (object == nullptr) throw ClassCastException(Complaint(Index, u" is not a TJSONObject is "));
  return *object;
}
TJSONObject& TJSONArray::getJSONObject(std::int32_t Index) {
  return const_cast<TJSONObject&>(std::as_const(*this).getJSONObject(Index));
}

String TJSONArray::getString(std::int32_t Index) const {
  return ReadText(View(Demand(Index)));
}

bool TJSONArray::optBoolean(std::int32_t Index, bool Default) const {
  return ReadBoolean(ViewAt(Index)).value_or(Default);
}
double TJSONArray::optDouble(std::int32_t Index, double Default) const {
  return ReadDouble(ViewAt(Index)).value_or(Default);
}
std::int32_t TJSONArray::optInt(std::int32_t Index, std::int32_t Default) const {
  return ReadIntOr(ViewAt(Index), Default);
}
const TJSONArray* TJSONArray::optJSONArray(std::int32_t Index) const {
  return dynamic_cast<const TJSONArray*>(opt(Index));
}
TJSONArray* TJSONArray::optJSONArray(std::int32_t Index) {
  return dynamic_cast<TJSONArray*>(opt(Index));
}
const TJSONObject* TJSONArray::optJSONObject(std::int32_t Index) const {
  return dynamic_cast<const TJSONObject*>(opt(Index));
}
TJSONObject* TJSONArray::optJSONObject(std::int32_t Index) {
  return dynamic_cast<TJSONObject*>(opt(Index));
}
String TJSONArray::optString(std::int32_t Index, StringView Default) const {
  const ValueView value = ViewAt(Index);
  return value.missing ? String(Default) : ReadText(value);
}

}  // namespace zentavo
