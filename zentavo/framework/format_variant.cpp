#include "zentavo/framework/format.h"
#include "zentavo/framework/variant.h"
#include "zentavo/framework/variant_convert.h"

namespace zentavo {

FormatArg::FormatArg(const Variant& value) {
  switch (value.Kind()) {
    case VariantKind::kBoolean:
    case VariantKind::kInteger:
    case VariantKind::kInt64:
      value_ = VarToInt64(value);
      is_wide_ = value.Kind() == VariantKind::kInt64;
      break;
    case VariantKind::kSingle:
    case VariantKind::kDouble:
    case VariantKind::kCurrency: value_ = VarToDouble(value); break;
    case VariantKind::kString: value_ = value.StringValue(); break;
    default: value_ = VarToStr(value); break;
  }
}

}  // namespace zentavo
