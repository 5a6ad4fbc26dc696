// The base of objects that lists and components hold and destroy without knowing their class.
#pragma once

#include "zentavo/platform/export.h"

namespace zentavo {

class ZENTAVO_API TObject {
 public:
  TObject() = default;
  virtual ~TObject();
};

}  // namespace zentavo
