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
  int digit_count = 0;
  int exponent = 0;  // of ten
  bool negative = false;
  bool whole = true;
};

constexpr int kMostDigits = 18;  // that fit `digits` for sure

// Reads digits into `number` and returns how many there were.
int ReadDigits(const char16_t*& here, const char16_t* end, Decimal& number) {
  const char16_t* start = here;
  for (; here < end && IsDigit(*here); ++here) {
    if (++number.digit_count > kMostDigits) return 0;
    number.digits = number.digits * 10 + static_cast<std::uint64_t>(*here - u'0');
  }
  return static_cast<int>(here - start);
}

bool ReadExponent(const char16_t*& here, const char16_t* end, Decimal& number) {
  number.whole = false;
  const bool negative = ++here < end && *here == u'-';
  if (negative || (here < end && *here == u'+')) ++here;
  Decimal exponent;
  const int count = ReadDigits(here, end, exponent);
  if (count == 0 || count > 3) return false;
  number.exponent += static_cast<int>(negative ? -exponent.digits : exponent.digits);
  return true;
}

// Reads a short number in the strict form; false for all others.
bool ReadStrictNumber(const char16_t*& here, const char16_t* end, Decimal& number) {
  number.negative = *here == u'-';
  if (number.negative) ++here;
  if (ReadDigits(here, end, number) == 0) return false;
  if (here < end && *here == u'.') {
    const int decimals = ReadDigits(++here, end, number);
    if (decimals == 0) return false;
    number.exponent = -decimals;
    number.whole = false;
  }
  return here == end || (*here | 0x20) != u'e' || ReadExponent(here, end, number);
}

// The value when one exact multiplication or division gives it.
std::optional<double> ExactDouble(const Decimal& number) {
  static constexpr std::array<double, 23> kPowers{1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                  1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                                  1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
  constexpr int kMost = static_cast<int>(kPowers.size()) - 1;
  if (number.digits > (std::uint64_t{1} << 53)) return std::nullopt;
  if (number.exponent < -kMost || number.exponent > kMost) return std::nullopt;
  const auto digits = static_cast<double>(number.digits);
  const double power =
      kPowers[static_cast<std::size_t>(number.exponent < 0 ? -number.exponent : number.exponent)];
  const double value = number.exponent < 0 ? digits / power : digits * power;
  return number.negative && value != 0 ? -value : value;
}

bool SetSlot(Slot& slot, const Decimal& number) {
  constexpr std::uint64_t kMostInteger = std::numeric_limits<std::int32_t>::max();
  if (number.whole && number.digits <= kMostInteger) {
    const auto value = static_cast<std::int32_t>(number.digits);
    slot = Slot::OfInteger(number.negative ? -value : value);
    return true;
  }
  if (number.whole && number.digits == kMostInteger + 1) return false;
  const std::optional<double> value = ExactDouble(number);
  if (value) slot = Slot::OfDouble(*value);
  return value.has_value();
}

const char16_t* ReadPlainNumber(const char16_t* here, const char16_t* end, Slot& slot) {
  const bool octal = *here == u'0' && end - here > 1 && here[1] != u'.' && !EndsBare(here[1]);
  Decimal number;
  if (octal || !ReadStrictNumber(here, end, number) || !SetSlot(slot, number)) return nullptr;
  return here;
}

const char16_t* ReadWord(const char16_t* here, const char16_t* end, StringView word) {
  const StringView rest(here, static_cast<std::size_t>(end - here));
  return rest.starts_with(word) ? here + word.size() : nullptr;
}

const char16_t* ReadPlain(const char16_t* here, const char16_t* end, Slot& slot) {
  if (IsDigit(*here) || *here == u'-') return ReadPlainNumber(here, end, slot);
  switch (*here) {
    case u't': slot = Slot::OfBoolean(true); return ReadWord(here, end, u"true");
    case u'f': slot = Slot::OfBoolean(false); return ReadWord(here, end, u"false");
    case u'n': slot = Slot::Of(SlotKind::kNull); return ReadWord(here, end, u"null");
    default: return nullptr;
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

const char16_t* ReadPlainValue(const char16_t* here, const char16_t* end, Slot& slot) {
  if (here == end) return nullptr;
  const char16_t* behind = ReadPlain(here, end, slot);
  return behind == end || (behind != nullptr && EndsBare(*behind)) ? behind : nullptr;
}

Slot ReadBareValue(StringView bare) {
  const char16_t first = bare[0];
  if (!IsDigit(first) && first != u'-' && first != u'+' && first != u'.') {
    if (IsWord(bare, u"true")) return Slot::OfBoolean(true);
    if (IsWord(bare, u"false")) return Slot::OfBoolean(false);
    if (IsWord(bare, u"null")) return Slot::Of(SlotKind::kNull);
    return Slot::Of(SlotKind::kText);
  }
  Slot plain;
  if (ReadPlainValue(bare.data(), bare.data() + bare.size(), plain) != nullptr) return plain;
  if (const std::optional<std::int32_t> value = ReadHexOrOctal(bare)) {
    return Slot::OfInteger(*value);
  }
  if (const std::optional<std::int32_t> value = TryStrToInt(bare)) return Slot::OfInteger(*value);
  if (const std::optional<double> value = ReadDouble(bare)) return Slot::OfDouble(*value);
  return Slot::Of(SlotKind::kText);
}

}  // namespace zentavo::json_internal
