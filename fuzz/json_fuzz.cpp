// Any bytes read as JSON, written and read again: the same value, but for the decimals beyond the
// sixth that the text form cuts. From UTF-16 the same comes out, and the tree may be taken apart.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "zentavo/framework/number_text.h"
#include "zentavo/json/array.h"
#include "zentavo/json/object.h"
#include "zentavo/json/text_form.h"

namespace {

using namespace zentavo;

void Check(bool holds) {
  if (!holds) std::abort();
}

bool HasDouble(const TZAbstractObject* value) {
  if (value == nullptr) return false;
  if (const auto* array = dynamic_cast<const TJSONArray*>(value)) {
    for (const TZAbstractObject* element : *array) {
      if (HasDouble(element)) return true;
    }
  }
  if (const auto* object = dynamic_cast<const TJSONObject*>(value)) {
    for (const JSONMember member : *object) {
      if (HasDouble(member.value)) return true;
    }
  }
  return value->Kind() == JSONKind::kDouble;
}

// What reading gives: the value's text, or where and why it failed.
template <typename Read>
String OutcomeOf(Read read) {
  try {
    return valueToString(read().get());
  } catch (const ParseException& error) {
    return error.Message() + IntToStr(error.Position());
  }
}

// Takes a tree apart value by value; what is lent first must be what is taken out.
void TakeApart(TZAbstractObject& value) {
  if (auto* array = dynamic_cast<TJSONArray*>(&value)) {
    while (!array->isEmpty()) {
      const TZAbstractObject* lent = array->opt(array->length() / 2);
      const auto taken = array->remove(array->length() / 2);
      Check(lent == nullptr || valueToString(lent) == valueToString(taken.get()));
      if (taken != nullptr) TakeApart(*taken);
    }
  }
  if (auto* object = dynamic_cast<TJSONObject*>(&value)) {
    for (const String& key : object->keys()) {
      object->put(key + u"+", *object->opt(key));
      const auto taken = object->remove(key);
      if (taken != nullptr) TakeApart(*taken);
    }
  }
}

void CheckLookups(const TZAbstractObject& value) {
  const auto* object = dynamic_cast<const TJSONObject*>(&value);
  if (object == nullptr) return;
  for (const String& key : object->keys()) Check(object->opt(key) != nullptr);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const String units = FromUtf8(bytes);
  Check(OutcomeOf([&] { return ReadJSONUtf8(bytes); }) ==
        OutcomeOf([&] { return ReadJSON(StringView(units)); }));
  try {
    const auto first = ReadJSONUtf8(bytes);
    const String text = valueToString(first.get());
    const auto second = ReadJSON(StringView(text));
    Check(valueToString(second.get()) == text);
    const auto third = ReadJSON(StringView(valueToString(second.get(), 2)));
    Check(third->equals(*second) && third->hash() == second->hash());
    if (!HasDouble(first.get())) Check(first->equals(*second));
    const auto copy = first->Clone();
    Check(copy->equals(*first));
    CheckLookups(*first);
    Check(valueToString(first.get()) == text);
    TakeApart(*first);
    Check(valueToString(copy.get()) == text);
  } catch (const ParseException& error) {
    Check(error.Line() >= 1 && error.Column() >= 1);
  }
  return 0;
}
