#include "zentavo/json/text_form.h"

#include "zentavo/framework/number_text.h"
#include "zentavo/json/array.h"
#include "zentavo/json/object.h"
#include "zentavo/json/reader.h"
#include "zentavo/json/tokener.h"
#include "zentavo/json/value_view.h"
#include "zentavo/json/writer.h"

namespace zentavo {

using json_internal::SlotOf;

String quote(StringView Text) {
  String text;
  json_internal::AppendQuoted(text, Text);
  return text;
}

String valueToString(const TZAbstractObject* Value) {
  String text;
  AppendValue(text, SlotOf(Value));
  return text;
}

String valueToString(const TZAbstractObject* Value, std::int32_t IndentFactor,
                     std::int32_t Indent) {
  String text;
  AppendValue(text, SlotOf(Value), json_internal::Indentation{IndentFactor, Indent});
  return text;
}

std::unique_ptr<TZAbstractObject> ReadJSON(StringView Text) {
  return json_internal::ReadWhole(Text);
}

std::unique_ptr<TZAbstractObject> ReadJSONUtf8(std::string_view Text) {
  return json_internal::ReadWhole(Text);
}

std::unique_ptr<TZAbstractObject> ReadJSON(TStream& Source) {
  return ReadJSONUtf8(json_internal::RestOf(Source));
}

const TZAbstractObject* FindByPath(const TZAbstractObject& Value, StringView Path) {
  const TZAbstractObject* value = &Value;
  while (value != nullptr && !Path.empty()) {
    const StringView step = Path.substr(0, Path.find(u'/'));
    Path.remove_prefix(step.size() == Path.size() ? step.size() : step.size() + 1);
    if (const auto* object = dynamic_cast<const TJSONObject*>(value)) {
      value = object->opt(step);
    } else {
      const auto* array = dynamic_cast<const TJSONArray*>(value);
      value = array != nullptr ? array->opt(StrToIntDef(step, -1)) : nullptr;
    }
  }
  return value;
}

}  // namespace zentavo
