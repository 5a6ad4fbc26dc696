// The framework's exceptions. Each carries its message as UTF-16 text; what() gives it in UTF-8.
#pragma once

#include <exception>

#include "zentavo/framework/text.h"

namespace zentavo {

// The base of every exception that the library raises.
class ZENTAVO_API Exception : public std::exception {
 public:
  explicit Exception(String message);
  Exception(const Exception&) = default;
  Exception& operator=(const Exception&) = default;
  ~Exception() override;

  const String& Message() const noexcept { return message_; }
  const char* what() const noexcept override { return utf8_.c_str(); }

 private:
  String message_;
  std::string utf8_;
};

// Declares an exception class that adds a type and nothing else.
#define ZENTAVO_DECLARE_EXCEPTION(Name, Base) \
  class ZENTAVO_API Name : public Base {      \
   public:                                    \
    using Base::Base;                         \
    Name(const Name&) = default;              \
    Name& operator=(const Name&) = default;   \
    ~Name() override;                         \
  }

ZENTAVO_DECLARE_EXCEPTION(EAbort, Exception);  // ends an operation without a message to the user
ZENTAVO_DECLARE_EXCEPTION(EConvertError, Exception);
ZENTAVO_DECLARE_EXCEPTION(EListError, Exception);
ZENTAVO_DECLARE_EXCEPTION(EStringListError, Exception);
ZENTAVO_DECLARE_EXCEPTION(EStreamError, Exception);
ZENTAVO_DECLARE_EXCEPTION(EReadError, EStreamError);
ZENTAVO_DECLARE_EXCEPTION(EWriteError, EStreamError);
ZENTAVO_DECLARE_EXCEPTION(EFOpenError, EStreamError);
ZENTAVO_DECLARE_EXCEPTION(EFCreateError, EStreamError);
ZENTAVO_DECLARE_EXCEPTION(EInOutError, Exception);
ZENTAVO_DECLARE_EXCEPTION(EOSError, Exception);
ZENTAVO_DECLARE_EXCEPTION(ERangeError, Exception);
ZENTAVO_DECLARE_EXCEPTION(EInvalidOp, Exception);
ZENTAVO_DECLARE_EXCEPTION(EZeroDivide, Exception);
ZENTAVO_DECLARE_EXCEPTION(EDivByZero, Exception);
ZENTAVO_DECLARE_EXCEPTION(EVariantError, Exception);
ZENTAVO_DECLARE_EXCEPTION(EVariantTypeCastError, EVariantError);

// Raises the silent abort, message "Operation aborted".
[[noreturn]] ZENTAVO_API void Abort();

}  // namespace zentavo
