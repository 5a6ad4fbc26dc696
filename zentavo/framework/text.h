// The text types of the library and what every unit does with them.
//
// A String is a sequence of UTF-16 units. Ordinal comparison compares units; comparison without
// regard to case maps each unit with the simple upper-case mapping and then compares ordinally.
// Positions in text count from 1.
//
// All functions may be called from any thread.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "zentavo/platform/export.h"

namespace zentavo {

using String = std::u16string;
using StringView = std::u16string_view;
using AnsiString = std::string;  // bytes in a code page that the signature or its comment names

// UTF-16 and UTF-8. A lone surrogate becomes U+FFFD in UTF-8; bytes that are not UTF-8 become
// U+FFFD, one for each ill-formed sequence.
ZENTAVO_API AnsiString ToUtf8(StringView text);
ZENTAVO_API String FromUtf8(std::string_view bytes);
// The same, appended to `out`.
ZENTAVO_API void AppendUtf8(AnsiString& out, StringView text);
ZENTAVO_API void AppendFromUtf8(String& out, std::string_view bytes);
ZENTAVO_API bool IsValidUtf8(std::string_view bytes);
ZENTAVO_API bool HasLoneSurrogate(StringView text);

namespace text_internal {
// The simple upper-case mapping of every unit, built at the first use.
ZENTAVO_API const char16_t* UpperTable();
}  // namespace text_internal

// Simple upper-case mapping of one unit. The table behind it is built once, at the first use.
inline char16_t UpperUnit(char16_t unit) {
  if (unit < 0x80) return unit >= u'a' && unit <= u'z' ? static_cast<char16_t>(unit - 32) : unit;
  return text_internal::UpperTable()[unit];
}
// Upper case of ASCII letters only.
constexpr char16_t UpCase(char16_t unit) {
  return unit >= u'a' && unit <= u'z' ? static_cast<char16_t>(unit - 32) : unit;
}
constexpr bool IsDigit(char16_t unit) {
  return unit >= u'0' && unit <= u'9';
}

ZENTAVO_API String AnsiUpperCase(StringView text);
ZENTAVO_API String AnsiLowerCase(StringView text);

// Below, equal to or above 0, as `a` is ordered before, with or after `b`.
ZENTAVO_API int CompareStr(StringView a, StringView b);
ZENTAVO_API int CompareText(StringView a, StringView b);  // without regard to case
ZENTAVO_API bool SameText(StringView a, StringView b);    // without regard to case
// Compares the first `count` units of each without regard to case; a shorter text ends it.
ZENTAVO_API int StrLIComp(StringView a, StringView b, std::size_t count);

// Without the units 0..32 at the ends, at the left, at the right. The views are of the argument.
ZENTAVO_API StringView TrimView(StringView text);
ZENTAVO_API StringView TrimLeftView(StringView text);
ZENTAVO_API StringView TrimRightView(StringView text);
inline String Trim(StringView text) {
  return String(TrimView(text));
}
inline String TrimLeft(StringView text) {
  return String(TrimLeftView(text));
}
inline String TrimRight(StringView text) {
  return String(TrimRightView(text));
}

// Takes the next line and its break, CR LF, CR or LF, from the front of `rest`; returns the line
// without the break, a view of what `rest` was.
ZENTAVO_API StringView TakeLine(StringView& rest);

// The position of the first `part` in `text`, 0 when it does not occur or is empty.
ZENTAVO_API std::int32_t Pos(StringView part, StringView text);
// At most `count` units from position `index`; an index below 1 counts 1, a negative count 0.
ZENTAVO_API String Copy(StringView text, std::int32_t index, std::int32_t count);
// Every `old_part` replaced by `new_part`, left to right, never inside what was inserted. An empty
// `old_part` occurs nowhere.
ZENTAVO_API String ReplaceAll(StringView text, StringView old_part, StringView new_part);
// `text` between `quote`s, each `quote` in it doubled.
ZENTAVO_API String QuotedStr(StringView text, char16_t quote = u'\'');

// At most `limit` units of outside text for an error message, with "..." when it was cut.
ZENTAVO_API String Excerpt(StringView text, std::size_t limit = 40);

}  // namespace zentavo
