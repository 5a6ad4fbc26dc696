// The numbers of the built-in functions, by which formulas call them.
#pragma once

#include <cstdint>

namespace zentavo {

inline constexpr std::int32_t kMaxId = 6;
inline constexpr std::int32_t kMinId = 8;
inline constexpr std::int32_t kCurTimeId = 12;
inline constexpr std::int32_t kIfId = 16;
inline constexpr std::int32_t kLastBuiltinId = 36;

}  // namespace zentavo
