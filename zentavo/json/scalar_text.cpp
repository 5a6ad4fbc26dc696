#include "zentavo/json/scalar_text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <optional>

#include "zentavo/framework/number_text.h"
#include "zentavo/genlib/stock_formats.h"

namespace zentavo::json_internal {

namespace {

using Pair = std::array<char16_t, 2>;

// Two upper-case hexadecimal digits for each byte.
constexpr std::array<Pair, 256> kHexPairs = [] {
  std::array<Pair, 256> pairs{};
  constexpr StringView kDigits = u"0123456789ABCDEF";
  for (std::size_t byte = 0; byte < 256; ++byte) {
    pairs[byte] = {kDigits[byte >> 4], kDigits[byte & 15]};
  }
  return pairs;
}();

// Two digits for each number below 100.
constexpr std::array<Pair, 100> kDigitPairs = [] {
  std::array<Pair, 100> pairs{};
  for (std::size_t number = 0; number < 100; ++number) {
    pairs[number] = {static_cast<char16_t>(u'0' + number / 10),
                     static_cast<char16_t>(u'0' + number % 10)};
  }
  return pairs;
}();

// What a unit becomes. Copied whole, so that no branch depends on its length.
struct alignas(16) Escape {
  std::array<char16_t, 7> text;
  char16_t length;
};

constexpr bool IsPlain(char16_t unit) {
  return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z') || IsDigit(unit) ||
         StringView(u"!$'()*-.@_/").find(unit) != StringView::npos;
}

constexpr char16_t LetterOf(char16_t unit) {
  constexpr StringView kLetters = u"\"\"\\\\\bb\tt\nn\ff\rr";  // pairs: unit, what follows '\'
  for (std::size_t index = 0; index < kLetters.size(); index += 2) {
    if (kLetters[index] == unit) return kLetters[index + 1];
  }
  return 0;
}

constexpr Escape EscapeOf(char16_t unit) {
  if (IsPlain(unit)) return {{unit}, 1};
  if (LetterOf(unit) != 0) return {{u'\\', LetterOf(unit)}, 2};
  const Pair high = kHexPairs[unit >> 8];
  const Pair low = kHexPairs[unit & 0xFF];
  return {{u'\\', u'u', high[0], high[1], low[0], low[1]}, kUnitsOfUnit};
}

// For the units that UTF-8 writes in one or two bytes: the alphabets from Latin to Arabic.
constexpr std::array<Escape, 0x800> kEscapes = [] {
  std::array<Escape, 0x800> escapes{};
  for (std::size_t unit = 0; unit < escapes.size(); ++unit) {
    escapes[unit] = EscapeOf(static_cast<char16_t>(unit));
  }
  return escapes;
}();

char16_t* WritePair(char16_t* out, const Pair& pair) {
  std::memcpy(out, pair.data(), sizeof pair);
  return out + pair.size();
}

char16_t* WritePairOfDigits(char16_t* out, std::uint32_t below_100) {
  return WritePair(out, kDigitPairs[below_100]);
}

char16_t* WriteSixDigits(char16_t* out, std::uint32_t below_million) {
  out = WritePairOfDigits(out, below_million / 10000);
  out = WritePairOfDigits(out, below_million / 100 % 100);
  return WritePairOfDigits(out, below_million % 100);
}

char16_t* WriteUpToSixDigits(char16_t* out, std::uint32_t below_million) {
  const std::uint32_t hundreds = below_million / 100;
  if (hundreds >= 100) {
    if (hundreds >= 1000) {
      out = WritePairOfDigits(out, hundreds / 100);
    } else {
      *out++ = static_cast<char16_t>(u'0' + hundreds / 100);
    }
    out = WritePairOfDigits(out, hundreds % 100);
    return WritePairOfDigits(out, below_million % 100);
  }
  if (hundreds > 0) {
    if (hundreds >= 10) {
      out = WritePairOfDigits(out, hundreds);
    } else {
      *out++ = static_cast<char16_t>(u'0' + hundreds);
    }
    return WritePairOfDigits(out, below_million % 100);
  }
  if (below_million >= 10) return WritePairOfDigits(out, below_million);
  *out++ = static_cast<char16_t>(u'0' + below_million);
  return out;
}

// Below 10^12.
char16_t* WriteDigits(char16_t* out, std::uint64_t value) {
  constexpr std::uint64_t kMillion = 1000000;
  if (value < kMillion) return WriteUpToSixDigits(out, static_cast<std::uint32_t>(value));
  out = WriteUpToSixDigits(out, static_cast<std::uint32_t>(value / kMillion));
  return WriteSixDigits(out, static_cast<std::uint32_t>(value % kMillion));
}

// The number of millionths that `value` prints, when plain arithmetic tells it for sure: a decimal
// of at most 15 digits that reads back as the value is its shortest one, and far from a half both
// roundings agree.
std::optional<std::uint64_t> Millionths(double value) {
  constexpr double kMillion = 1e6;
  const double scaled = value * kMillion;
  if (!(scaled < 1e15)) return std::nullopt;
  const auto nearest = static_cast<std::int64_t>(scaled + 0.5);
  const auto whole = static_cast<double>(nearest);
  if (whole / kMillion == value) return static_cast<std::uint64_t>(nearest);
  constexpr double kErrorBelow = 1e11;  // the scaled value is then exact to 2^-16
  const bool half = std::abs(scaled - std::floor(scaled) - 0.5) < 1.0 / 1024;
  if (scaled >= kErrorBelow || half) return std::nullopt;
  return static_cast<std::uint64_t>(nearest);
}

char16_t* WriteMillionths(char16_t* out, bool negative, std::uint64_t millionths) {
  constexpr std::uint64_t kMillion = 1000000;
  if (negative && millionths > 0) *out++ = u'-';
  out = WriteDigits(out, millionths / kMillion);
  *out++ = u'.';
  return WriteSixDigits(out, static_cast<std::uint32_t>(millionths % kMillion));
}

}  // namespace

char16_t* WriteEscaped(char16_t* out, StringView part, char16_t before) {
  const char16_t* end = part.data() + part.size();
  for (const char16_t* here = part.data(); here != end; ++here) {
    const char16_t unit = *here;
    if (unit == u'/' && (here == part.data() ? before : here[-1]) == u'<') *out++ = u'\\';
    if (unit < kEscapes.size()) {
      std::memcpy(out, &kEscapes[unit], sizeof(Escape));
      out += kEscapes[unit].length;
    } else {
      out = WritePair(out, {u'\\', u'u'});
      out = WritePair(out, kHexPairs[unit >> 8]);
      out = WritePair(out, kHexPairs[unit & 0xFF]);
    }
  }
  return out;
}

char16_t* WriteInteger(char16_t* out, std::int32_t value) {
  std::int64_t wide = value;
  if (wide < 0) {
    *out++ = u'-';
    wide = -wide;
  }
  return WriteDigits(out, static_cast<std::uint64_t>(wide));
}

char16_t* WriteDouble(char16_t* out, double value) {
  const std::optional<std::uint64_t> millionths = Millionths(std::abs(value));
  if (!millionths) {
    const String text = FormatFloat(u"######0.000000", value, StockFormatSettings());
    return std::copy(text.begin(), text.end(), out);
  }
  return WriteMillionths(out, value < 0, *millionths);
}

// At most 15 digits are a double's shortest decimal, which is what its text form is made of.
char16_t* WriteDecimal(char16_t* out, const Slot& decimal) {
  constexpr std::array<std::uint64_t, 7> kScales{1000000, 100000, 10000, 1000, 100, 10, 1};
  constexpr std::int64_t kMost = 1000000000000;
  const std::int64_t digits = decimal.digits;
  if (decimal.size >= kScales.size() || digits >= kMost || digits <= -kMost) {
    return WriteDouble(out, decimal.DecimalValue());
  }
  const auto magnitude = static_cast<std::uint64_t>(digits < 0 ? -digits : digits);
  return WriteMillionths(out, digits < 0, magnitude * kScales[decimal.size]);
}

}  // namespace zentavo::json_internal
