#include "tools/zentavo/escaped_text.h"

#include <optional>

#include "tools/zentavo/command.h"
#include "zentavo/framework/number_text.h"

namespace zentavo::tool {

namespace {

constexpr std::size_t kDigits = 4;

std::optional<char16_t> HexDigit(char16_t unit) {
  if (IsDigit(unit)) return static_cast<char16_t>(unit - u'0');
  const char16_t upper = UpCase(unit);
  if (upper >= u'A' && upper <= u'F') return static_cast<char16_t>(upper - u'A' + 10);
  return {};
}

// The unit that `escape`, the text behind a backslash, begins with.
char16_t ReadEscape(StringView escape) {
  bool legal = escape.size() > kDigits && escape.front() == u'u';
  unsigned value = 0;
  for (std::size_t i = 1; legal && i <= kDigits; ++i) {
    const std::optional<char16_t> digit = HexDigit(escape[i]);
    legal = digit.has_value();
    value = value * 16 + digit.value_or(0);
  }
  if (!legal)
    throw UsageError(u"'\\" + Excerpt(escape.substr(0, kDigits + 1)) + u"' is not \\uXXXX");
  return static_cast<char16_t>(value);
}

}  // namespace

String EscapedText(StringView text) {
  String result;
  for (const char16_t unit : text) {
    if (unit >= u' ' && unit <= u'~' && unit != u'\\') {
      result += unit;
    } else {
      result += u"\\u" + IntToHex(unit, kDigits);
    }
  }
  return result;
}

String UnescapedText(StringView text) {
  String result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == u'\\') {
      result += ReadEscape(text.substr(i + 1));
      i += kDigits + 1;
    } else {
      result += text[i];
    }
  }
  return result;
}

}  // namespace zentavo::tool
