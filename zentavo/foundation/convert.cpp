#include "zentavo/foundation/convert.h"

#include "zentavo/framework/code_page.h"
#include "zentavo/framework/variant_convert.h"

namespace zentavo {

AnsiString VarToAnsiStr(const Variant& V) {
  if (V.IsNull()) return {};
  return ToSystemAnsi(VarToStr(V));
}

}  // namespace zentavo
