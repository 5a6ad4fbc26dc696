// The error that formulas raise.
#pragma once

#include "zentavo/framework/exception.h"

namespace zentavo {

// Carries, beside its fixed text, where in the formula the fault stands and what is at fault.
class ZENTAVO_API EXParserError : public Exception {
 public:
  explicit EXParserError(String message, std::int32_t position = 0, String name = {});
  EXParserError(const EXParserError&) = default;
  EXParserError& operator=(const EXParserError&) = default;
  ~EXParserError() override;

  // The 1-based position in the formula's text of the token at fault; 0 when there is none.
  std::int32_t Position() const noexcept { return position_; }
  // The name or text at fault, empty when the message says it all.
  const String& Name() const noexcept { return name_; }

 private:
  std::int32_t position_;
  String name_;
};

}  // namespace zentavo
