// Conversions between JSON values and variants, by lists of what is left to do instead of
// recursion.
#include <utility>
#include <vector>

#include "zentavo/framework/date_time.h"
#include "zentavo/framework/variant.h"
#include "zentavo/framework/variant_convert.h"
#include "zentavo/json/array.h"
#include "zentavo/json/object.h"
#include "zentavo/json/text_form.h"
#include "zentavo/json/value_view.h"

namespace zentavo {

using json_internal::ValueView;
using json_internal::ViewOf;

namespace {

struct ToVariantJob {
  const TZAbstractObject* container;
  Variant* target;
};

// The variant of a scalar; containers are noted for later and stay Empty.
void SetVariant(Variant& target, const TZAbstractObject* source, std::vector<ToVariantJob>& jobs) {
  const ValueView value = ViewOf(source);
  if (value.missing) return;
  switch (value.kind) {
    case JSONKind::kNull: target = Variant::Null(); return;
    case JSONKind::kBoolean: target = value.boolean; return;
    case JSONKind::kInteger: target = value.integer; return;
    case JSONKind::kDouble: target = value.number; return;
    case JSONKind::kString: target = Variant(value.text); return;
    case JSONKind::kOther:
      throw ClassCastException(String(source->ClassName()) + u" has no variant form");
    default: jobs.push_back({source, &target});
  }
}

void FillArray(const TJSONArray& array, Variant& target, std::vector<ToVariantJob>& jobs) {
  target = Variant(Variant::Array(static_cast<std::size_t>(array.length())));
  Variant* element = target.ArrayValue().data();
  for (const TZAbstractObject* value : array) SetVariant(*element++, value, jobs);
}

void FillPairs(const TJSONObject& object, Variant& target, std::vector<ToVariantJob>& jobs) {
  target = Variant(Variant::Array(static_cast<std::size_t>(object.length())));
  Variant* element = target.ArrayValue().data();
  for (const JSONMember member : object) {
    *element = Variant(Variant::Array(2));
    Variant::Array& pair = element->ArrayValue();
    pair[0] = Variant(member.key);
    SetVariant(pair[1], member.value, jobs);
    ++element;
  }
}

struct FromVariantJob {
  const Variant* source;
  TJSONArray* target;
};

std::unique_ptr<TZAbstractObject> ScalarFrom(const Variant& value) {
  switch (value.Kind()) {
    case VariantKind::kEmpty:
    case VariantKind::kNull: return std::make_unique<JNULL>();
    case VariantKind::kBoolean: return std::make_unique<_Boolean>(value.BooleanValue());
    case VariantKind::kInteger: return std::make_unique<_Integer>(value.Int32Value());
    case VariantKind::kInt64:
      if (std::in_range<std::int32_t>(value.Int64Value())) {
        return std::make_unique<_Integer>(static_cast<std::int32_t>(value.Int64Value()));
      }
      return std::make_unique<_Double>(static_cast<double>(value.Int64Value()));
    case VariantKind::kString: return std::make_unique<_String>(String(value.StringValue()));
    case VariantKind::kDate:
      return std::make_unique<_String>(
          FormatDateTime(u"yyyy-mm-dd\"T\"hh\":\"nn\":\"ss", value.DoubleValue()));
    case VariantKind::kByteArray: throw ClassCastException(u"An array of bytes has no JSON form");
    default: return std::make_unique<_Double>(VarToDouble(value));
  }
}

std::unique_ptr<TZAbstractObject> ValueFrom(const Variant& value,
                                            std::vector<FromVariantJob>& jobs) {
  if (!value.IsArray()) return ScalarFrom(value);
  auto array = std::make_unique<TJSONArray>();
  jobs.push_back({&value, array.get()});
  return array;
}

}  // namespace

Variant JSONToVariant(const TZAbstractObject* Value) {
  Variant result;
  std::vector<ToVariantJob> jobs;
  SetVariant(result, Value, jobs);
  while (!jobs.empty()) {
    const ToVariantJob job = jobs.back();
    jobs.pop_back();
    if (job.container->Kind() == JSONKind::kArray) {
      FillArray(static_cast<const TJSONArray&>(*job.container), *job.target, jobs);
    } else {
      FillPairs(static_cast<const TJSONObject&>(*job.container), *job.target, jobs);
    }
  }
  return result;
}

std::unique_ptr<TZAbstractObject> JSONFromVariant(const Variant& Value) {
  std::vector<FromVariantJob> jobs;
  auto result = ValueFrom(Value, jobs);
  while (!jobs.empty()) {
    const FromVariantJob job = jobs.back();
    jobs.pop_back();
    for (const Variant& element : job.source->ArrayValue()) {
      job.target->put(ValueFrom(element, jobs));
    }
  }
  return result;
}

}  // namespace zentavo
