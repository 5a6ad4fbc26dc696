// The types of fields.
#pragma once

#include <cstdint>

namespace zentavo {

enum class TFieldType : std::uint8_t {
  ftString,
  ftInteger,   // 32 bits
  ftLargeint,  // 64 bits
  ftFloat,
  ftCurrency,  // four decimals
  ftBCD,       // a decimal number of any length, kept as its text
  ftBoolean,
  ftDate,
  ftTime,
  ftDateTime,
  ftMemo,
  ftBlob,
  ftBytes,
};

}  // namespace zentavo
