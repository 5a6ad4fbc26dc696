#include "zentavo/framework/number_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "zentavo/framework/decimal_digits.h"
#include "zentavo/framework/exception.h"
#include "zentavo/framework/float_layout.h"

namespace zentavo {
namespace {

constexpr int kFloatDigits = 15;
constexpr double kScientificLimit = 1e15;
constexpr int kMaxDecimals = 18;

template <typename Text, typename Integer>
void AppendDecimal(Text& out, Integer value) {
  std::array<char, 24> digits;
  const char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
  const auto count = static_cast<std::size_t>(end - digits.data());
  std::array<typename Text::value_type, 24> units;
  std::copy_n(digits.data(), count, units.data());
  out.append(units.data(), count);
}

template <typename Text>
void AppendFloatTo(Text& out, double value, typename Text::value_type separator) {
  if (std::fabs(value) < kScientificLimit) {
    const auto whole = static_cast<std::int64_t>(value);
    if (static_cast<double>(whole) == value) {
      AppendDecimal(out, whole);
      return;
    }
  } else if (!std::isfinite(value)) {
    float_layout::AppendAscii(out, float_layout::NonFiniteName(value));
    return;
  }
  float_layout::AppendGeneral(out, DecimalDigits(value), kFloatDigits, separator);
}

[[noreturn]] void RaiseInvalidOp() {
  throw EInvalidOp(u"Invalid floating point operation");
}

std::int64_t ToInt64(double whole) {
  constexpr double kLimit = 0x1p63;
  if (!(whole >= -kLimit && whole < kLimit)) RaiseInvalidOp();
  return static_cast<std::int64_t>(whole);
}

}  // namespace

String IntToStr(std::int64_t value) {
  String out;
  AppendInt(out, value);
  return out;
}

void AppendInt(String& out, std::int64_t value) {
  AppendDecimal(out, value);
}

void AppendUInt(String& out, std::uint64_t value) {
  AppendDecimal(out, value);
}

String IntToHex(std::uint64_t value, int digits) {
  std::array<char16_t, 16> units;
  std::size_t first = units.size();
  for (; value != 0; value >>= 4) units[--first] = u"0123456789ABCDEF"[value & 15];
  const std::size_t count = units.size() - first;
  const auto wanted = static_cast<std::size_t>(std::max(digits, 1));
  String out(wanted > count ? wanted - count : 0, u'0');
  return out.append(units.data() + first, count);
}

String FloatToStr(double value) {
  return FloatToStr(value, FormatSettings());
}

String FloatToStr(double value, const TFormatSettings& settings) {
  String out;
  AppendFloat(out, value, settings.DecimalSeparator);
  return out;
}

void AppendFloat(String& out, double value, char16_t decimal_separator) {
  AppendFloatTo(out, value, decimal_separator);
}

void AppendFloat(AnsiString& out, double value, char decimal_separator) {
  AppendFloatTo(out, value, decimal_separator);
}

String FloatToFixed(double value, int decimals, Grouping grouping, char16_t decimal_separator,
                    char16_t thousand_separator) {
  String out;
  if (!std::isfinite(value)) {
    float_layout::AppendAscii(out, float_layout::NonFiniteName(value));
    return out;
  }
  float_layout::AppendFixed(out, DecimalDigits(value), std::clamp(decimals, 0, kMaxDecimals),
                            decimal_separator,
                            grouping == Grouping::kThousands ? thousand_separator : u'\0');
  return out;
}

std::int64_t Round(double value) {
  return ToInt64(std::nearbyint(value));
}

std::int64_t Trunc(double value) {
  return ToInt64(std::trunc(value));
}

}  // namespace zentavo
