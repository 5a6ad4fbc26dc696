#include "zentavo/json/escapes.h"

#include "zentavo/framework/number_text.h"

namespace zentavo::json_internal {

namespace {

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

constexpr Escape CodeOf(char16_t unit) {
  constexpr StringView kDigits = u"0123456789ABCDEF";
  return {{u'\\', u'u', kDigits[unit >> 12], kDigits[unit >> 8 & 15], kDigits[unit >> 4 & 15],
           kDigits[unit & 15]},
          kUnitsOfUnit};
}

constexpr Escape EscapeOf(char16_t unit) {
  if (IsPlain(unit)) return {{unit}, 1};
  if (LetterOf(unit) != 0) return {{u'\\', LetterOf(unit)}, 2};
  return CodeOf(unit);
}

constexpr std::array<Escape, kEscapeCount> MakeEscapes() {
  std::array<Escape, kEscapeCount> escapes{};
  for (std::size_t unit = 0; unit < escapes.size(); ++unit) {
    escapes[unit] = EscapeOf(static_cast<char16_t>(unit));
  }
  return escapes;
}

}  // namespace

constexpr std::array<Escape, kEscapeCount> kEscapes = MakeEscapes();

Written WriteHard(char16_t* out, const char16_t* here, const char16_t* end) {
  const char16_t unit = *here++;
  const Escape code = CodeOf(unit);
  std::memcpy(out, &code, sizeof code);
  out += code.length;
  if (unit == u'<' && here != end && *here == u'/') {
    *out++ = u'\\';
    *out++ = *here++;
  }
  return {here, out};
}

}  // namespace zentavo::json_internal
