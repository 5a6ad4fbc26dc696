// How texts and numbers are written.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

#include "zentavo/framework/number_text.h"
#include "zentavo/genlib/stock_formats.h"
#include "zentavo/json/writer.h"

namespace zentavo::json_internal {

namespace {

// Two upper-case hexadecimal digits for each byte.
constexpr std::array<std::array<char16_t, 2>, 256> kHexPairs = [] {
  std::array<std::array<char16_t, 2>, 256> pairs{};
  constexpr StringView kDigits = u"0123456789ABCDEF";
  for (std::size_t byte = 0; byte < 256; ++byte) {
    pairs[byte] = {kDigits[byte >> 4], kDigits[byte & 15]};
  }
  return pairs;
}();

constexpr std::size_t kMostUnits = 6;  // that one unit becomes

// What an ASCII unit becomes. Copied whole, so that no branch depends on its length.
struct alignas(16) Escape {
  char16_t text[7];
  char16_t length;
};

constexpr Escape EscapeOf(char16_t unit) {
  constexpr StringView kLetters = u"\"\"\\\\\bb\tt\nn\ff\rr";  // pairs: unit, what follows '\'
  for (std::size_t index = 0; index < kLetters.size(); index += 2) {
    if (kLetters[index] == unit) return {{u'\\', kLetters[index + 1]}, 2};
  }
  const bool plain = (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z') ||
                     IsDigit(unit) || StringView(u"!$'()*-.@_/").find(unit) != StringView::npos;
  if (plain) return {{unit}, 1};
  return {{u'\\', u'u', u'0', u'0', kHexPairs[unit][0], kHexPairs[unit][1]}, kMostUnits};
}

constexpr std::array<Escape, 128> kEscapes = [] {
  std::array<Escape, 128> escapes{};
  for (char16_t unit = 0; unit < 128; ++unit) escapes[unit] = EscapeOf(unit);
  return escapes;
}();

// Writes up to a whole Escape, whatever its length.
char16_t* WriteEscaped(char16_t* out, char16_t unit) {
  if (unit < kEscapes.size()) {
    std::memcpy(out, &kEscapes[unit], sizeof(Escape));
    return out + kEscapes[unit].length;
  }
  std::memcpy(out, u"\\u", 4);
  std::memcpy(out + 2, kHexPairs[unit >> 8].data(), 4);
  std::memcpy(out + 4, kHexPairs[unit & 0xFF].data(), 4);
  return out + kMostUnits;
}

// Appends part of a text to `out`, which has room for it and an Escape; `before` is the unit before
// it.
char16_t* WritePart(char16_t* out, StringView part, char16_t before) {
  for (const char16_t unit : part) {
    if (unit == u'/' && before == u'<') *out++ = u'\\';
    out = WriteEscaped(out, unit);
    before = unit;
  }
  return out;
}

char16_t* WriteDigits(char16_t* out, std::uint64_t value, int least_digits) {
  std::array<char16_t, 20> digits;
  std::size_t first = digits.size();
  for (int count = 0; value > 0 || count < least_digits; ++count, value /= 10) {
    digits[--first] = static_cast<char16_t>(u'0' + value % 10);
  }
  return std::copy(digits.begin() + first, digits.end(), out);
}

// The number of millionths that `value` prints, when plain arithmetic tells it for sure: a decimal
// of at most 15 digits that reads back as the value is its shortest one, and far from a half both
// roundings agree.
std::optional<std::uint64_t> Millionths(double value) {
  constexpr double kMillion = 1e6;
  const double scaled = value * kMillion;
  if (!(scaled < 1e15)) return std::nullopt;
  const double nearest = std::floor(scaled + 0.5);
  if (nearest / kMillion == value) return static_cast<std::uint64_t>(nearest);
  constexpr double kErrorBelow = 1e11;  // the scaled value is then exact to 2^-16
  const bool half = std::abs(scaled - std::floor(scaled) - 0.5) < 1.0 / 1024;
  if (scaled >= kErrorBelow || half) return std::nullopt;
  return static_cast<std::uint64_t>(nearest);
}

}  // namespace

void AppendQuoted(TextBuffer& out, StringView text) {
  constexpr std::size_t kPart = 1024;  // units that room is made for at once
  out.Add(u'"');
  for (std::size_t start = 0; start < text.size(); start += kPart) {
    const StringView part = text.substr(start, kPart);
    char16_t* end = out.Room(part.size() * kMostUnits + sizeof(Escape));
    out.SetEnd(WritePart(end, part, start > 0 ? text[start - 1] : u'\0'));
  }
  out.Add(u'"');
}

void AppendInteger(TextBuffer& out, std::int32_t value) {
  char16_t* end = out.Room(12);
  if (value < 0) *end++ = u'-';
  const std::int64_t wide = value;
  out.SetEnd(WriteDigits(end, static_cast<std::uint64_t>(wide < 0 ? -wide : wide), 1));
}

void AppendDouble(TextBuffer& out, double value) {
  const std::optional<std::uint64_t> millionths = Millionths(std::abs(value));
  if (!millionths) {
    out.Add(FormatFloat(u"######0.000000", value, StockFormatSettings()));
    return;
  }
  char16_t* end = out.Room(32);
  if (value < 0 && *millionths > 0) *end++ = u'-';
  end = WriteDigits(end, *millionths / 1000000, 1);
  *end++ = u'.';
  out.SetEnd(WriteDigits(end, *millionths % 1000000, 6));
}

}  // namespace zentavo::json_internal
