#include "zentavo/json/text_form.h"

#include "zentavo/framework/number_text.h"
#include "zentavo/json/array.h"
#include "zentavo/json/object.h"
#include "zentavo/json/reader.h"
#include "zentavo/json/tokener.h"
#include "zentavo/json/writer.h"

namespace zentavo {

using json_internal::Cursor;
using json_internal::Reader;
using json_internal::TextBuffer;
using json_internal::ViewOf;

String quote(StringView Text) {
  TextBuffer out;
  json_internal::AppendQuoted(out, Text);
  return String(out.View());
}

String valueToString(const TZAbstractObject* Value) {
  TextBuffer out;
  AppendValue(out, ViewOf(Value));
  return String(out.View());
}

String valueToString(const TZAbstractObject* Value, std::int32_t IndentFactor,
                     std::int32_t Indent) {
  TextBuffer out;
  AppendValue(out, ViewOf(Value), json_internal::Indentation{IndentFactor, Indent});
  return String(out.View());
}

std::unique_ptr<TZAbstractObject> ReadJSON(StringView Text) {
  Cursor cursor(Text);
  auto value = Reader(cursor, kMaxJSONDepth).ReadValue();
  if (cursor.NextClean() != 0) throw cursor.Error(u"Unexpected text after the value");
  return value;
}

std::unique_ptr<TZAbstractObject> ReadJSONUtf8(std::string_view Text) {
  return ReadJSON(StringView(FromUtf8(Text)));
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
