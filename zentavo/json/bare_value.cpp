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

constexpr std::ptrdiff_t kMostDigits = 18;  // that fit 64 bits for sure

template <typename Unit>
struct Digits {
  std::uint64_t value;
  const Unit* behind;
};

// Goes on with the digits of `value`.
template <typename Unit>
Digits<Unit> TakeDigits(const Unit* here, const Unit* end, std::uint64_t value) {
  for (; here != end; ++here) {
    const auto digit = static_cast<std::uint32_t>(*here) - u'0';
    if (digit > 9) break;
    value = value * 10 + digit;
  }
  return {value, here};
}

// The value when one exact multiplication or division gives it.
std::optional<double> ExactDouble(std::uint64_t digits, int exponent) {
  static constexpr std::array<double, 23> kPowers{1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                  1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                                  1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
  constexpr int kMost = static_cast<int>(kPowers.size()) - 1;
  if (digits > (std::uint64_t{1} << 53) || exponent < -kMost || exponent > kMost) {
    return std::nullopt;
  }
  const auto whole = static_cast<double>(static_cast<std::int64_t>(digits));
  if (exponent < 0) return whole / kPowers[static_cast<std::size_t>(-exponent)];
  return whole * kPowers[static_cast<std::size_t>(exponent)];
}

// A negative zero has no sign.
bool SetDouble(Slot* slot, bool negative, std::uint64_t digits, int exponent) {
  const std::optional<double> value = ExactDouble(digits, exponent);
  if (value) *slot = Slot::OfDouble(negative && digits != 0 ? -*value : *value);
  return value.has_value();
}

bool SetInteger(Slot* slot, bool negative, std::uint64_t digits) {
  constexpr std::uint64_t kMost = std::numeric_limits<std::int32_t>::max();
  if (digits > kMost) return digits > kMost + 1 && SetDouble(slot, negative, digits, 0);
  const auto value = static_cast<std::int32_t>(digits);
  *slot = Slot::OfInteger(negative ? -value : value);
  return true;
}

template <typename Unit>
bool IsExponent(const Unit* here, const Unit* end) {
  return here != end && (*here == 'e' || *here == 'E');
}

// Reads the exponent behind an 'e'; null when it is no short one.
template <typename Unit>
const Unit* TakeExponent(const Unit* here, const Unit* end, int& exponent) {
  const bool negative = here != end && *here == '-';
  if (negative || (here != end && *here == '+')) ++here;
  const Digits<Unit> digits = TakeDigits(here, end, 0);
  const std::ptrdiff_t count = digits.behind - here;
  if (count == 0 || count > 3) return nullptr;
  exponent = negative ? -static_cast<int>(digits.value) : static_cast<int>(digits.value);
  return digits.behind;
}

// Reads a short number in the strict form; null for all others.
template <typename Unit>
const Unit* ReadPlainNumber(const Unit* here, const Unit* end, Slot* slot) {
  const bool negative = *here == '-';
  const Unit* start = negative ? here + 1 : here;
  const Digits<Unit> whole = TakeDigits(start, end, 0);
  const std::ptrdiff_t whole_count = whole.behind - start;
  const bool octal = !negative && whole_count > 1 && *start == '0';
  if (whole_count == 0 || whole_count > kMostDigits || octal) return nullptr;
  const bool has_point = whole.behind != end && *whole.behind == '.';
  if (!has_point && !IsExponent(whole.behind, end)) {
    return SetInteger(slot, negative, whole.value) ? whole.behind : nullptr;
  }
  Digits<Unit> all = whole;
  int exponent = 0;
  std::ptrdiff_t decimals = 0;
  if (has_point) {
    all = TakeDigits(whole.behind + 1, end, whole.value);
    decimals = all.behind - whole.behind - 1;
    if (decimals == 0 || whole_count + decimals > kMostDigits) return nullptr;
  }
  if (IsExponent(all.behind, end)) all.behind = TakeExponent(all.behind + 1, end, exponent);
  if (all.behind == nullptr) return nullptr;
  exponent -= static_cast<int>(decimals);
  return SetDouble(slot, negative, all.value, exponent) ? all.behind : nullptr;
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
