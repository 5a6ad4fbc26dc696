#include "zentavo/framework/decimal_scale.h"
#include "zentavo/framework/exception.h"
#include "zentavo/framework/number_text.h"
#include "zentavo/framework/text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace zentavo {
namespace {

// A view of text that is read once from left to right.
template <typename Unit>
class Cursor {
 public:
  explicit Cursor(std::basic_string_view<Unit> text)
      : at_(text.data()), end_(text.data() + text.size()) {}

  bool AtEnd() const { return at_ == end_; }
  const Unit* Place() const { return at_; }
  Unit Peek() const { return at_ == end_ ? Unit{} : *at_; }
  bool PeekDigit() const { return at_ != end_ && *at_ >= Unit{'0'} && *at_ <= Unit{'9'}; }
  unsigned TakeDigit() { return static_cast<unsigned>(*at_++ - Unit{'0'}); }
  bool TakeIf(Unit unit) {
    if (at_ == end_ || *at_ != unit) return false;
    ++at_;
    return true;
  }
  bool TakeLetter(char lower) {
    return TakeIf(static_cast<Unit>(lower)) || TakeIf(static_cast<Unit>(lower - 32));
  }
  void SkipBlanks() {
    while (at_ != end_ && IsBlank(*at_)) ++at_;
  }
  bool RestIsBlank() {
    SkipBlanks();
    return AtEnd();
  }

 private:
  static bool IsBlank(Unit unit) {
    return static_cast<std::make_unsigned_t<decltype(unit + 0)>>(unit) <= 32;
  }

  const Unit* at_;
  const Unit* end_;
};

// ---- Integers ----

int HexDigit(char16_t unit) {
  if (unit >= u'0' && unit <= u'9') return unit - u'0';
  if (unit >= u'A' && unit <= u'F') return unit - u'A' + 10;
  if (unit >= u'a' && unit <= u'f') return unit - u'a' + 10;
  return -1;
}

bool TakeHexMark(Cursor<char16_t>& cursor) {
  if (cursor.TakeIf(u'$') || cursor.TakeLetter('x')) return true;
  Cursor<char16_t> ahead = cursor;
  if (!ahead.TakeIf(u'0') || !ahead.TakeLetter('x')) return false;
  cursor = ahead;
  return true;
}

// The magnitude that fills the rest of the text, none above `limit`.
std::optional<std::uint64_t> ReadMagnitude(StringView digits, unsigned base, std::uint64_t limit) {
  if (digits.empty()) return std::nullopt;
  std::uint64_t value = 0;
  for (const char16_t unit : digits) {
    const int digit = HexDigit(unit);
    if (digit < 0 || static_cast<unsigned>(digit) >= base) return std::nullopt;
    const auto added = static_cast<std::uint64_t>(digit);
    if (value > (limit - added) / base) return std::nullopt;
    value = value * base + added;
  }
  return value;
}

template <typename Integer>
std::optional<Integer> TryReadInteger(StringView text) {
  Cursor<char16_t> cursor(text);
  cursor.SkipBlanks();
  const bool negative = cursor.TakeIf(u'-');
  if (!negative) cursor.TakeIf(u'+');
  const unsigned base = TakeHexMark(cursor) ? 16 : 10;
  const auto max = static_cast<std::uint64_t>(std::numeric_limits<Integer>::max());
  const StringView digits = text.substr(static_cast<std::size_t>(cursor.Place() - text.data()));
  const auto magnitude = ReadMagnitude(digits, base, negative ? max + 1 : max);
  if (!magnitude) return std::nullopt;
  return static_cast<Integer>(negative ? 0 - *magnitude : *magnitude);
}

// ---- Floating point ----

// The value digits x 10^exponent that a number's text names. Short numbers stay in the mantissa;
// only longer ones are copied.
template <typename Unit>
struct FloatText {
  static constexpr int kMantissaDigits = 19;

  const Unit* digits = nullptr;  // the first digit that is not zero, and what follows it
  const Unit* digits_end = nullptr;
  std::uint64_t mantissa = 0;
  std::int64_t significant = 0;  // digits from the first one that is not zero
  std::int64_t decimals = 0;
  std::int64_t exponent = 0;
  bool negative = false;

  void Add(const Unit* place, unsigned digit) {
    if (significant == 0) {
      if (digit == 0) return;
      digits = place;
    }
    if (significant < kMantissaDigits) mantissa = mantissa * 10 + digit;
    ++significant;
  }
};

template <typename Unit>
std::int64_t TakeDigits(Cursor<Unit>& cursor, FloatText<Unit>& number) {
  const Unit* const first = cursor.Place();
  while (cursor.PeekDigit()) {
    const Unit* const place = cursor.Place();
    number.Add(place, cursor.TakeDigit());
  }
  number.digits_end = cursor.Place();
  return cursor.Place() - first;
}

// The exponent; more than any text can make up for counts as kHugeExponent.
template <typename Unit>
std::optional<std::int64_t> TakeExponent(Cursor<Unit>& cursor) {
  constexpr std::int64_t kHugeExponent = std::int64_t{1} << 60;
  const bool negative = cursor.TakeIf(Unit{'-'});
  if (!negative) cursor.TakeIf(Unit{'+'});
  if (!cursor.PeekDigit()) return std::nullopt;
  std::int64_t value = 0;
  while (cursor.PeekDigit()) {
    value =
        std::min(value * 10 + static_cast<std::int64_t>(cursor.TakeDigit()), kHugeExponent / 10);
  }
  return negative ? -value : value;
}

template <typename Unit>
std::optional<FloatText<Unit>> ScanFloat(std::basic_string_view<Unit> text, Unit separator) {
  Cursor<Unit> cursor(text);
  FloatText<Unit> number;
  cursor.SkipBlanks();
  number.negative = cursor.TakeIf(Unit{'-'});
  if (!number.negative) cursor.TakeIf(Unit{'+'});
  const std::int64_t before = TakeDigits(cursor, number);
  if (cursor.TakeIf(separator)) {
    number.decimals = TakeDigits(cursor, number);
    if (number.decimals == 0) return std::nullopt;
  } else if (before == 0) {
    return std::nullopt;
  }
  if (cursor.TakeLetter('e')) {
    const auto exponent = TakeExponent(cursor);
    if (!exponent) return std::nullopt;
    number.exponent = *exponent;
  }
  if (!cursor.RestIsBlank()) return std::nullopt;
  return number;
}

// The digits in full. Behind the most that can matter, one more digit stands for all others that
// are not zero: it keeps the number on its side of a half.
template <typename Unit>
double LongFloat(const FloatText<Unit>& number) {
  constexpr std::size_t kKept = decimal_internal::kMaxDigits - 1;
  std::array<char, decimal_internal::kMaxDigits> digits;
  std::size_t count = 0;
  bool more = false;
  for (const Unit* at = number.digits; at != number.digits_end; ++at) {
    if (*at < Unit{'0'} || *at > Unit{'9'}) continue;  // the separator
    if (count < kKept) {
      digits[count++] = static_cast<char>(*at);
    } else {
      more = more || *at != Unit{'0'};
    }
  }
  const std::int64_t dropped = number.significant - static_cast<std::int64_t>(count);
  std::int64_t exponent = number.exponent - number.decimals + dropped;
  if (more) {
    digits[count++] = '1';
    --exponent;
  }
  return decimal_internal::DigitsToDouble({digits.data(), count}, exponent);
}

template <typename Unit>
double FloatMagnitude(const FloatText<Unit>& number) {
  if (number.significant <= FloatText<Unit>::kMantissaDigits) {
    const std::int64_t exponent = number.exponent - number.decimals;
    if (const auto exact = decimal_internal::ExactScale(number.mantissa, exponent)) return *exact;
    if (number.mantissa == 0) return 0;
  }
  return LongFloat(number);
}

template <typename Unit>
std::optional<double> TryReadFloat(std::basic_string_view<Unit> text, Unit separator) {
  const auto number = ScanFloat(text, separator);
  if (!number) return std::nullopt;
  const double magnitude = FloatMagnitude(*number);
  if (std::isinf(magnitude)) return std::nullopt;
  return number->negative && magnitude != 0 ? -magnitude : magnitude;
}

String Quoted(StringView text, StringView rest) {
  String message = u"'";
  message += text;
  message += rest;
  return message;
}

}  // namespace

std::int32_t StrToInt(StringView text) {
  if (const auto value = TryStrToInt(text)) return *value;
  RaiseNotInteger(text);
}

std::int64_t StrToInt64(StringView text) {
  if (const auto value = TryStrToInt64(text)) return *value;
  RaiseNotInteger(text);
}

std::int32_t StrToIntDef(StringView text, std::int32_t fallback) {
  return TryStrToInt(text).value_or(fallback);
}

std::int64_t StrToInt64Def(StringView text, std::int64_t fallback) {
  return TryStrToInt64(text).value_or(fallback);
}

std::optional<std::int32_t> TryStrToInt(StringView text) {
  return TryReadInteger<std::int32_t>(text);
}

std::optional<std::int64_t> TryStrToInt64(StringView text) {
  return TryReadInteger<std::int64_t>(text);
}

double StrToFloat(StringView text) {
  return StrToFloat(text, FormatSettings());
}

double StrToFloat(StringView text, const TFormatSettings& settings) {
  if (const auto value = TryStrToFloat(text, settings.DecimalSeparator)) return *value;
  RaiseNotFloat(text);
}

double StrToFloatDef(StringView text, double fallback) {
  return TryStrToFloat(text, FormatSettings().DecimalSeparator).value_or(fallback);
}

std::optional<double> TryStrToFloat(StringView text, char16_t decimal_separator) {
  return TryReadFloat(text, decimal_separator);
}

std::optional<double> TryStrToFloat(std::string_view text, char decimal_separator) {
  return TryReadFloat(text, decimal_separator);
}

void RaiseNotInteger(StringView text) {
  throw EConvertError(Quoted(text, u"' is not a valid integer value"));
}

void RaiseNotFloat(StringView text) {
  throw EConvertError(Quoted(text, u"' is not a valid floating point value"));
}

}  // namespace zentavo
