// The errors of JSON values and of the reader of JSON text.
#pragma once

#include <cstdint>

#include "zentavo/framework/exception.h"

namespace zentavo {

ZENTAVO_DECLARE_EXCEPTION(NullPointerException, Exception);
ZENTAVO_DECLARE_EXCEPTION(NoSuchElementException, Exception);
ZENTAVO_DECLARE_EXCEPTION(NumberFormatException, Exception);
ZENTAVO_DECLARE_EXCEPTION(ClassCastException, Exception);
ZENTAVO_DECLARE_EXCEPTION(NotImplmentedFeature, Exception);  // spelled so in every release

// A text that is no JSON. The message holds the whole source text; Reason() alone is short.
class ZENTAVO_API ParseException : public Exception {
 public:
  // Where the offending character stands, from 1; a column counts UTF-16 units.
  struct Place {
    std::int32_t line;
    std::int32_t column;
  };

  ParseException(String Reason, String Message, std::int32_t Position, Place Where);
  ParseException(const ParseException&) = default;
  ParseException& operator=(const ParseException&) = default;
  ~ParseException() override;

  const String& Reason() const noexcept { return FReason; }
  // How many units of the text were consumed.
  std::int32_t Position() const noexcept { return FPosition; }
  std::int32_t Line() const noexcept { return FPlace.line; }
  std::int32_t Column() const noexcept { return FPlace.column; }

 private:
  String FReason;
  std::int32_t FPosition;
  Place FPlace;
};

}  // namespace zentavo
