// The decimal digits of a number: the ground of all number text.
//
// A double is turned into the shortest digits that read back as the same double; rounding then
// works on those digits, half away from zero (2.675 to two decimals is 2.68, 1.005 is 1.01).
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "zentavo/platform/export.h"

namespace zentavo {

// The magnitude 0.DDDD x 10^point and a sign. Zero has no digits. A value type.
class ZENTAVO_API DecimalDigits {
 public:
  // `value` must be finite.
  explicit DecimalDigits(double value);
  // A whole number with `decimals` of its digits behind the point (currency: 4).
  explicit DecimalDigits(std::int64_t value, int decimals = 0);

  // The double nearest to the number; an infinity when it lies beyond the doubles' range.
  double ToDouble() const;

  bool Negative() const { return negative_; }  // of zero: false, whatever its sign was
  bool IsZero() const { return count_ == 0; }
  // How many digits stand before the point; zero or negative when the number is below 0.1.
  int Point() const { return point_; }
  // The significant digits, without zeros at either end.
  std::string_view Digits() const { return {digits_.data(), static_cast<std::size_t>(count_)}; }
  // The digit '0'..'9' at a place: 0 is the first before the point, -1 the first behind it.
  char DigitAt(int place) const;

  // Round half away from zero and drop zeros at the end.
  void RoundToDecimals(int decimals);  // negative: before the point
  void RoundToSignificant(int digits);

 private:
  void SetWhole(std::uint64_t magnitude, int decimals);
  void CutTo(std::int64_t digits);
  void DropZerosAtEnd();

  std::array<char, 24> digits_{};
  int count_ = 0;
  int point_ = 0;
  bool negative_ = false;
};

// `value` rounded to `decimals` by the rule above, as the double nearest to the result. NaN and the
// infinities come back as they are; a result that is zero has no sign.
ZENTAVO_API double RoundToDecimals(double value, int decimals);

}  // namespace zentavo
