// The plain spellings of values without quotes, quickly: internal to the JSON classes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>

#include "zentavo/framework/text.h"
#include "zentavo/json/bare_value.h"
#include "zentavo/json/slot.h"

namespace zentavo::json_internal {

// All functions here read on until a unit stops them, without looking for the end of the text:
// somewhere behind `here` there must be a unit that ends bare values.

inline constexpr std::ptrdiff_t kMostDigits = 18;  // that fit 64 bits for sure

template <typename Unit>
struct Digits {
  std::uint64_t value;
  const Unit* behind;
};

// Goes on with the digits of `value`.
template <typename Unit>
Digits<Unit> TakeDigits(const Unit* here, std::uint64_t value) {
  for (;; ++here) {
    const auto digit = static_cast<std::uint32_t>(*here) - u'0';
    if (digit > 9) return {value, here};
    value = value * 10 + digit;
  }
}

// The value when one exact multiplication or division gives it.
inline std::optional<double> ExactDouble(std::uint64_t digits, int exponent) {
  if (digits > (std::uint64_t{1} << 53) || exponent < -kMostPower || exponent > kMostPower) {
    return std::nullopt;
  }
  const auto whole = static_cast<double>(static_cast<std::int64_t>(digits));
  if (exponent < 0) return whole / PowerOfTen(static_cast<std::size_t>(-exponent));
  return whole * PowerOfTen(static_cast<std::size_t>(exponent));
}

// A negative zero has no sign.
inline bool SetDouble(Slot* slot, bool negative, std::uint64_t digits, int exponent) {
  const std::optional<double> value = ExactDouble(digits, exponent);
  if (value) *slot = Slot::OfDouble(negative && digits != 0 ? -*value : *value);
  return value.has_value();
}

inline bool SetInteger(Slot* slot, bool negative, std::uint64_t digits) {
  constexpr std::uint64_t kMost = std::numeric_limits<std::int32_t>::max();
  if (digits > kMost) return digits > kMost + 1 && SetDouble(slot, negative, digits, 0);
  const auto value = static_cast<std::int32_t>(digits);
  *slot = Slot::OfInteger(negative ? -value : value);
  return true;
}

template <typename Unit>
bool IsExponent(Unit unit) {
  return unit == 'e' || unit == 'E';
}

// Reads the exponent behind an 'e'; null when it is no short one.
template <typename Unit>
const Unit* TakeExponent(const Unit* here, int& exponent) {
  const bool negative = *here == '-';
  if (negative || *here == '+') ++here;
  const Digits<Unit> digits = TakeDigits(here, 0);
  const std::ptrdiff_t count = digits.behind - here;
  if (count == 0 || count > 3) return nullptr;
  exponent = negative ? -static_cast<int>(digits.value) : static_cast<int>(digits.value);
  return digits.behind;
}

// Goes on with a number behind its whole part of so many digits.
template <typename Unit>
const Unit* TakeDecimals(const Digits<Unit>& whole, std::ptrdiff_t whole_count, bool negative,
                         Slot* slot) {
  constexpr std::ptrdiff_t kMostExact = 15;
  Digits<Unit> all = whole;
  std::ptrdiff_t decimals = 0;
  if (*whole.behind == '.') {
    all = TakeDigits(whole.behind + 1, whole.value);
    decimals = all.behind - whole.behind - 1;
    if (decimals == 0 || whole_count + decimals > kMostDigits) return nullptr;
  }
  int exponent = 0;
  if (IsExponent(*all.behind)) {
    all.behind = TakeExponent(all.behind + 1, exponent);
  } else if (whole_count + decimals <= kMostExact) {
    const auto digits = static_cast<std::int64_t>(all.value);
    *slot = Slot::OfDecimal(negative ? -digits : digits, static_cast<std::uint32_t>(decimals));
    return all.behind;
  }
  exponent -= static_cast<int>(decimals);
  return all.behind != nullptr && SetDouble(slot, negative, all.value, exponent) ? all.behind
                                                                                 : nullptr;
}

// Reads a short number in the strict form; null for all others.
template <typename Unit>
const Unit* ReadPlainNumber(const Unit* here, Slot* slot) {
  const bool negative = *here == '-';
  const Unit* start = negative ? here + 1 : here;
  const Digits<Unit> whole = TakeDigits(start, 0);
  const std::ptrdiff_t count = whole.behind - start;
  if (count == 0 || count > kMostDigits) return nullptr;
  if (*start == '0' && count > 1 && !negative) return nullptr;  // octal
  if (*whole.behind == '.' || IsExponent(*whole.behind)) {
    return TakeDecimals(whole, count, negative, slot);
  }
  return SetInteger(slot, negative, whole.value) ? whole.behind : nullptr;
}

template <typename Unit>
const Unit* ReadPlainWord(const Unit* here, const char* word) {
  for (; *word != 0; ++word, ++here) {
    if (*here != static_cast<Unit>(*word)) return nullptr;
  }
  return here;
}

// Short integers and decimals, true, false and null, right before what ends a bare value or before
// blanks. Returns where the value ends; null for all other values.
template <typename Unit>
const Unit* ReadPlainValue(const Unit* here, Slot* slot) {
  const Unit* behind = nullptr;
  if (*here == 't') {
    *slot = Slot::OfBoolean(true);
    behind = ReadPlainWord(here, "true");
  } else if (*here == 'f') {
    *slot = Slot::OfBoolean(false);
    behind = ReadPlainWord(here, "false");
  } else if (*here == 'n') {
    *slot = Slot::Of(SlotKind::kNull);
    behind = ReadPlainWord(here, "null");
  } else {
    behind = ReadPlainNumber(here, slot);
  }
  if (behind == nullptr) return nullptr;
  while (*behind == ' ') ++behind;
  return EndsBare(*behind) ? behind : nullptr;
}

}  // namespace zentavo::json_internal
