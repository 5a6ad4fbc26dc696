// Any bytes read as JSON, written and read again: the same value, but for the decimals beyond the
// sixth that the text form cuts.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

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

void CheckLookups(const TZAbstractObject& value) {
  const auto* object = dynamic_cast<const TJSONObject*>(&value);
  if (object == nullptr) return;
  for (const String& key : object->keys()) Check(object->opt(key) != nullptr);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  try {
    const auto first = ReadJSONUtf8(bytes);
    const String text = valueToString(first.get());
    const auto second = ReadJSON(StringView(text));
    Check(valueToString(second.get()) == text);
    const auto third = ReadJSON(StringView(valueToString(second.get(), 2)));
    Check(third->equals(*second) && third->hash() == second->hash());
    if (!HasDouble(first.get())) Check(first->equals(*second));
    Check(first->Clone()->equals(*first));
    CheckLookups(*first);
  } catch (const ParseException& error) {
    Check(error.Line() >= 1 && error.Column() >= 1);
  }
  return 0;
}
