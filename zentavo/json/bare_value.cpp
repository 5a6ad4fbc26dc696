#include "zentavo/json/bare_value.h"

#include <array>
#include <limits>
#include <optional>

#include "zentavo/framework/number_text.h"

namespace zentavo::json_internal {

namespace {

constexpr std::array<bool, 128> kEndsBare = [] {
  std::array<bool, 128> ends{};
  for (std::size_t unit = 0; unit < u' '; ++unit) ends[unit] = true;
  for (const char16_t unit : StringView(u",:]}/\\\"[{;=#")) ends[unit] = true;
  return ends;
}();

// A number as written: digits, perhaps a point and an exponent.
struct Decimal {
  std::uint64_t digits = 0;
  std::ptrdiff_t digit_count = 0;
  int exponent = 0;  // of ten
  bool negative = false;
  bool whole = true;
};

constexpr std::ptrdiff_t kMostDigits = 18;  // that fit `digits` for sure

// Reads digits into `number` and returns where they end.
template <typename Unit>
const Unit* ReadDigits(const Unit* here, const Unit* end, Decimal& number) {
  const Unit* start = here;
  for (; here != end; ++here) {
    const auto digit = static_cast<std::uint32_t>(*here) - u'0';
    if (digit > 9) break;
    number.digits = number.digits * 10 + digit;
  }
  number.digit_count += here - start;
  return here;
}

// From behind the 'e' on; null when it is no short exponent.
template <typename Unit>
const Unit* ReadExponent(const Unit* here, const Unit* end, Decimal& number) {
  number.whole = false;
  const bool negative = here != end && *here == '-';
  if (negative || (here != end && *here == '+')) ++here;
  Decimal exponent;
  here = ReadDigits(here, end, exponent);
  if (exponent.digit_count == 0 || exponent.digit_count > 3) return nullptr;
  const auto value = static_cast<int>(exponent.digits);
  number.exponent += negative ? -value : value;
  return here;
}

// Reads a short number in the strict form; null for all others.
template <typename Unit>
const Unit* ReadStrictNumber(const Unit* here, const Unit* end, Decimal& number) {
  number.negative = *here == '-';
  if (number.negative) ++here;
  here = ReadDigits(here, end, number);
  const std::ptrdiff_t whole_digits = number.digit_count;
  if (whole_digits == 0) return nullptr;
  if (here != end && *here == '.') {
    here = ReadDigits(here + 1, end, number);
    number.whole = false;
    number.exponent = -static_cast<int>(number.digit_count - whole_digits);
    if (number.exponent == 0) return nullptr;
  }
  if (number.digit_count > kMostDigits) return nullptr;
  return here != end && (*here | 0x20) == 'e' ? ReadExponent(here + 1, end, number) : here;
}

// The value when one exact multiplication or division gives it.
bool SetExactDouble(Slot* slot, const Decimal& number) {
  static constexpr std::array<double, 23> kPowers{1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                  1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                                  1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
  constexpr int kMost = static_cast<int>(kPowers.size()) - 1;
  if (number.digits > (std::uint64_t{1} << 53)) return false;
  if (number.exponent < -kMost || number.exponent > kMost) return false;
  const auto digits = static_cast<double>(static_cast<std::int64_t>(number.digits));
  const double power =
      kPowers[static_cast<std::size_t>(number.exponent < 0 ? -number.exponent : number.exponent)];
  const double value = number.exponent < 0 ? digits / power : digits * power;
  *slot = Slot::OfDouble(number.negative && number.digits != 0 ? -value : value);
  return true;
}

bool SetNumber(Slot* slot, const Decimal& number) {
  constexpr std::uint64_t kMostInteger = std::numeric_limits<std::int32_t>::max();
  if (!number.whole) return SetExactDouble(slot, number);
  if (number.digits > kMostInteger) {
    return number.digits > kMostInteger + 1 && SetExactDouble(slot, number);
  }
  const auto value = static_cast<std::int32_t>(number.digits);
  *slot = Slot::OfInteger(number.negative ? -value : value);
  return true;
}

template <typename Unit>
const Unit* ReadPlainNumber(const Unit* here, const Unit* end, Slot* slot) {
  const bool octal = *here == '0' && end - here > 1 && here[1] != '.' && !EndsBare(here[1]);
  if (octal) return nullptr;
  Decimal number;
  here = ReadStrictNumber(here, end, number);
  return here != nullptr && SetNumber(slot, number) ? here : nullptr;
}

template <typename Unit, std::size_t kSize>
const Unit* ReadWord(const Unit* here, const Unit* end, const char (&word)[kSize]) {
  constexpr std::size_t kLength = kSize - 1;
  if (static_cast<std::size_t>(end - here) < kLength) return nullptr;
  for (std::size_t index = 0; index < kLength; ++index) {
    if (here[index] != static_cast<Unit>(word[index])) return nullptr;
  }
  return here + kLength;
}

template <typename Unit>
const Unit* ReadPlain(const Unit* here, const Unit* end, Slot* slot) {
  switch (*here) {
    case 't': *slot = Slot::OfBoolean(true); return ReadWord(here, end, "true");
    case 'f': *slot = Slot::OfBoolean(false); return ReadWord(here, end, "false");
    case 'n': *slot = Slot::Of(SlotKind::kNull); return ReadWord(here, end, "null");
    case '-': return ReadPlainNumber(here, end, slot);
    default:
      return IsDigit(static_cast<char16_t>(*here)) ? ReadPlainNumber(here, end, slot) : nullptr;
  }
}

// The digits of one base, up to 31 bits.
std::optional<std::int32_t> ReadBase(StringView digits, std::int64_t base) {
  std::int64_t value = 0;
  for (const char16_t unit : digits) {
    const char16_t upper = UpCase(unit);
    const int digit = IsDigit(unit)                      ? unit - u'0'
                      : (upper >= u'A' && upper <= u'F') ? upper - u'A' + 10
                                                         : 16;
    if (digit >= base) return std::nullopt;
    value = value * base + digit;
    if (value > std::numeric_limits<std::int32_t>::max()) return std::nullopt;
  }
  return static_cast<std::int32_t>(value);
}

std::optional<std::int32_t> ReadHexOrOctal(StringView text) {
  if (text[0] != u'0') return std::nullopt;
  if (text.size() > 2 && (text[1] | 0x20) == u'x') return ReadBase(text.substr(2), 16);
  return ReadBase(text, 8);
}

// "5." is a double; the framework reads no number that ends in its separator.
std::optional<double> ReadDouble(StringView text) {
  if (text.ends_with(u'.')) {
    text.remove_suffix(1);
    const std::size_t sign = text.starts_with(u'-') || text.starts_with(u'+') ? 1 : 0;
    if (text.find_first_not_of(u"0123456789", sign) != StringView::npos) return std::nullopt;
  }
  return TryStrToFloat(text, u'.');
}

bool IsWord(StringView text, StringView word) {
  return text.size() == word.size() && SameText(text, word);
}

}  // namespace

bool EndsBare(char16_t unit) {
  return unit < kEndsBare.size() && kEndsBare[unit];
}

template <typename Unit>
const Unit* ReadPlainValue(const Unit* here, const Unit* end, Slot* slot) {
  const Unit* behind = ReadPlain(here, end, slot);
  if (behind == nullptr) return nullptr;
  while (behind != end && *behind == ' ') ++behind;
  return behind == end || EndsBare(*behind) ? behind : nullptr;
}

template const char16_t* ReadPlainValue(const char16_t*, const char16_t*, Slot*);
template const char* ReadPlainValue(const char*, const char*, Slot*);

Slot ReadBareValue(StringView bare) {
  const char16_t first = bare[0];
  if (!IsDigit(first) && first != u'-' && first != u'+' && first != u'.') {
    if (IsWord(bare, u"true")) return Slot::OfBoolean(true);
    if (IsWord(bare, u"false")) return Slot::OfBoolean(false);
    if (IsWord(bare, u"null")) return Slot::Of(SlotKind::kNull);
    return Slot::OfText(bare);
  }
  Slot plain;
  if (ReadPlainValue(bare.data(), bare.data() + bare.size(), &plain) != nullptr) return plain;
  if (const std::optional<std::int32_t> value = ReadHexOrOctal(bare)) {
    return Slot::OfInteger(*value);
  }
  if (const std::optional<std::int32_t> value = TryStrToInt(bare)) return Slot::OfInteger(*value);
  if (const std::optional<double> value = ReadDouble(bare)) return Slot::OfDouble(*value);
  return Slot::OfText(bare);
}

}  // namespace zentavo::json_internal
