#include "zentavo/framework/decimal_digits.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "zentavo/framework/decimal_scale.h"

namespace zentavo {
namespace {

constexpr double kFourDecimals = 1e4;
// A number below this with four decimals has at most 15 digits.
constexpr double kFourDecimalsLimit = 1e11;

std::uint64_t Magnitude(std::int64_t value) {
  const auto bits = static_cast<std::uint64_t>(value);
  return value < 0 ? 0 - bits : bits;
}

}  // namespace

DecimalDigits::DecimalDigits(double value) {
  const double magnitude = std::fabs(value);
  if (magnitude < kFourDecimalsLimit) {
    // At most 15 digits that read back as the value are the shortest ones; the division reads them.
    const auto scaled = static_cast<std::int64_t>(magnitude * kFourDecimals + 0.5);
    if (static_cast<double>(scaled) / kFourDecimals == magnitude) {
      SetWhole(static_cast<std::uint64_t>(scaled), 4);
      negative_ = std::signbit(value) && count_ > 0;
      return;
    }
  }
  negative_ = std::signbit(value);
  std::array<char, 32> text;  // d.ddddde+dd
  const char* const end = std::to_chars(text.data(), text.data() + text.size(), magnitude,
                                        std::chars_format::scientific)
                              .ptr;
  const char* const mark = std::find(static_cast<const char*>(text.data()), end, 'e');
  digits_[0] = text[0];
  count_ = 1;
  for (const char* at = text.data() + 2; at < mark; ++at) {
    digits_[static_cast<std::size_t>(count_++)] = *at;
  }
  const char* const exponent = mark[1] == '+' ? mark + 2 : mark + 1;
  std::from_chars(exponent, end, point_);
  ++point_;
}

DecimalDigits::DecimalDigits(std::int64_t value, int decimals) : negative_(value < 0) {
  SetWhole(Magnitude(value), decimals);
}

void DecimalDigits::SetWhole(std::uint64_t magnitude, int decimals) {
  if (magnitude == 0) return;
  const char* const end =
      std::to_chars(digits_.data(), digits_.data() + digits_.size(), magnitude).ptr;
  count_ = static_cast<int>(end - digits_.data());
  point_ = count_ - decimals;
  DropZerosAtEnd();
}

double DecimalDigits::ToDouble() const {
  const double magnitude = decimal_internal::DigitsToDouble(Digits(), point_ - count_);
  return negative_ ? -magnitude : magnitude;
}

char DecimalDigits::DigitAt(int place) const {
  const int index = point_ - 1 - place;
  return index >= 0 && index < count_ ? digits_[static_cast<std::size_t>(index)] : '0';
}

void DecimalDigits::RoundToDecimals(int decimals) {
  CutTo(std::int64_t{point_} + decimals);
}

void DecimalDigits::RoundToSignificant(int digits) {
  CutTo(digits);
}

void DecimalDigits::CutTo(std::int64_t digits) {
  if (digits >= count_) return;
  const bool up = digits >= 0 && digits_[static_cast<std::size_t>(digits)] >= '5';
  count_ = digits > 0 ? static_cast<int>(digits) : 0;
  if (!up) {
    DropZerosAtEnd();
    return;
  }
  while (count_ > 0 && digits_[static_cast<std::size_t>(count_ - 1)] == '9') --count_;
  if (count_ > 0) {
    ++digits_[static_cast<std::size_t>(count_ - 1)];
  } else {
    digits_[0] = '1';
    count_ = 1;
    ++point_;
  }
}

void DecimalDigits::DropZerosAtEnd() {
  while (count_ > 0 && digits_[static_cast<std::size_t>(count_ - 1)] == '0') --count_;
  if (count_ > 0) return;
  point_ = 0;
  negative_ = false;
}

double RoundToDecimals(double value, int decimals) {
  if (!std::isfinite(value)) return value;
  DecimalDigits digits(value);
  const int kept = digits.Point() + std::clamp(decimals, -400, 400);
  if (!digits.IsZero() && kept >= static_cast<int>(digits.Digits().size())) return value;
  digits.RoundToDecimals(decimals);
  return digits.ToDouble();
}

}  // namespace zentavo
