// What several built-in functions need of their arguments.
#pragma once

#include <cmath>
#include <cstdint>

#include "zentavo/formula/token.h"

namespace zentavo {

// The number without its fraction, within the 32-bit range; 0 for NaN.
inline std::int32_t TruncatedInteger(const TResult& value) {
  constexpr double kLimit = 2147483647.0;
  const double number = std::trunc(value.ResultNum);
  if (std::isnan(number)) return 0;
  if (number >= kLimit) return INT32_MAX;
  return number <= -kLimit ? -INT32_MAX : static_cast<std::int32_t>(number);
}

}  // namespace zentavo
