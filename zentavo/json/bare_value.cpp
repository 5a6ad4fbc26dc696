#include "zentavo/json/bare_value.h"

#include <limits>
#include <optional>

#include "zentavo/framework/number_text.h"

namespace zentavo::json_internal {

namespace {

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

Slot ReadBareValue(StringView bare) {
  const char16_t first = bare[0];
  if (!IsDigit(first) && first != u'-' && first != u'+' && first != u'.') {
    if (IsWord(bare, u"true")) return Slot::OfBoolean(true);
    if (IsWord(bare, u"false")) return Slot::OfBoolean(false);
    if (IsWord(bare, u"null")) return Slot::Of(SlotKind::kNull);
    return Slot::OfText(bare);
  }
  if (const std::optional<std::int32_t> value = ReadHexOrOctal(bare)) {
    return Slot::OfInteger(*value);
  }
  if (const std::optional<std::int32_t> value = TryStrToInt(bare)) return Slot::OfInteger(*value);
  if (const std::optional<double> value = ReadDouble(bare)) return Slot::OfDouble(*value);
  return Slot::OfText(bare);
}

}  // namespace zentavo::json_internal
