#include "zentavo/platform/line_break.h"

namespace zentavo::platform {

std::u16string_view LineBreak() {
  return u"\r\n";
}

}  // namespace zentavo::platform
