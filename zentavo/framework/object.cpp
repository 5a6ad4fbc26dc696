#include "zentavo/framework/object.h"

namespace zentavo {

TObject::~TObject() = default;

}  // namespace zentavo
