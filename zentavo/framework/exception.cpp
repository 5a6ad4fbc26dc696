#include "zentavo/framework/exception.h"

#include <utility>

namespace zentavo {

Exception::Exception(String message) : message_(std::move(message)), utf8_(ToUtf8(message_)) {}
Exception::~Exception() = default;

// Each destructor stands in one place, so that a handler in another module finds the same type.
EAbort::~EAbort() = default;
EConvertError::~EConvertError() = default;
EListError::~EListError() = default;
EStringListError::~EStringListError() = default;
EStreamError::~EStreamError() = default;
EReadError::~EReadError() = default;
EWriteError::~EWriteError() = default;
EFOpenError::~EFOpenError() = default;
EFCreateError::~EFCreateError() = default;
EInOutError::~EInOutError() = default;
EOSError::~EOSError() = default;
ERangeError::~ERangeError() = default;
EInvalidOp::~EInvalidOp() = default;
EZeroDivide::~EZeroDivide() = default;
EDivByZero::~EDivByZero() = default;
EVariantError::~EVariantError() = default;
EVariantTypeCastError::~EVariantTypeCastError() = default;

void Abort() {
  throw EAbort(u"Operation aborted");
}

}  // namespace zentavo
