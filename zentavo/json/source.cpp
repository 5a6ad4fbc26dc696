#include "zentavo/json/source.h"

#include <algorithm>
#include <type_traits>

#include "zentavo/framework/number_text.h"
#include "zentavo/json/bare_value.h"

namespace zentavo::json_internal {

namespace {

ParseException::Place PlaceOf(StringView text, std::size_t index) {
  ParseException::Place place{1, 1};
  for (std::size_t at = 0; at < index; ++at) {
    const bool pair = text[at] == u'\r' && at + 1 < text.size() && text[at + 1] == u'\n';
    if ((text[at] == u'\n' || text[at] == u'\r') && !pair) {
      place = {place.line + 1, 1};
    } else {
      ++place.column;
    }
  }
  return place;
}

String Utf16(StringView text) {
  return String(text);
}
String Utf16(std::string_view text) {
  return FromUtf8(text);
}

template <typename Unit>
constexpr std::basic_string_view<Unit> ByteOrderMark() {
  if constexpr (std::is_same_v<Unit, char16_t>) {
    return u"\xFEFF";
  } else {
    return "\xEF\xBB\xBF";
  }
}

}  // namespace

std::int32_t HexValue(char16_t unit) {
  if (IsDigit(unit)) return unit - u'0';
  const char16_t upper = UpCase(unit);
  return upper >= u'A' && upper <= u'F' ? upper - u'A' + 10 : -1;
}

String Description(StringView text, std::size_t consumed) {
  return u" at character " + IntToStr(static_cast<std::int64_t>(consumed)) + u" of " + String(text);
}

template <typename Unit>
const Unit* Source<Unit>::SkipMark(const Unit* here) const {
  constexpr View kMark = ByteOrderMark<Unit>();
  return here == begin_ && Text().starts_with(kMark) ? here + kMark.size() : here;
}

template <typename Unit>
const Unit* Source<Unit>::SkipBlanks(const Unit* here) const {
  while (here != end_ && !IsSignificant(*here)) {
    if (*here == '/' || *here == '#') {
      const Unit* behind = CommentEnd(here);
      if (behind == here) return here;
      here = behind;
    } else {
      ++here;
    }
  }
  return here;
}

// Where the comment that begins at `here` ends; `here` when it is a single '/'.
template <typename Unit>
const Unit* Source<Unit>::CommentEnd(const Unit* here) const {
  constexpr Unit kBlockEnd[] = {'*', '/'};
  if (*here == '/') {
    const Unit second = here + 1 == end_ ? Unit{} : here[1];
    if (second != '/' && second != '*') return here;
    if (second == '*') {
      const std::size_t end = Between(here + 2, end_).find(View(kBlockEnd, 2));
      if (end == View::npos) throw ErrorAt(u"Unclosed comment.", end_);
      return here + 2 + end + 2;
    }
  }
  return std::find_if(here, end_, [](Unit unit) { return unit == '\n' || unit == '\r'; });
}

template <typename Unit>
const Unit* Source<Unit>::BareEnd(const Unit* here) const {
  while (here != end_ && !EndsBare(*here)) ++here;
  return here;
}

template <typename Unit>
const Unit* Source<Unit>::LastStop() const {
  if (begin_ == end_) return begin_;
  const Unit* last = end_ - 1;
  while (last != begin_ && !EndsBare(*last)) --last;
  return last;
}

template <typename Unit>
char16_t Source<Unit>::TakeEscape(const Unit*& here) const {
  const auto letter = static_cast<char16_t>(*here++);
  switch (letter) {
    case u'b': return u'\b';
    case u't': return u'\t';
    case u'n': return u'\n';
    case u'f': return u'\f';
    case u'r': return u'\r';
    case u'u': return TakeHexEscape(here);
    default: return letter;
  }
}

template <typename Unit>
char16_t Source<Unit>::TakeHexEscape(const Unit*& here) const {
  std::int32_t code = 0;
  for (int count = 0; count < 4; ++count) {
    const std::int32_t digit = here == end_ ? -1 : HexValue(static_cast<char16_t>(*here));
    if (digit < 0) throw ErrorBefore(u"Illegal escape", here);
    code = code * 16 + digit;
    ++here;
  }
  return static_cast<char16_t>(code);
}

template <typename Unit>
ParseException Source<Unit>::ErrorAt(StringView reason, const Unit* place) const {
  return Error(reason, place, place == end_ ? 0 : 1);
}

template <typename Unit>
ParseException Source<Unit>::ErrorBefore(StringView reason, const Unit* place) const {
  return Error(reason, place, 0);
}

template <typename Unit>
ParseException Source<Unit>::Error(StringView reason, const Unit* place,
                                   std::size_t consumed) const {
  const String text = Utf16(Text());
  const std::size_t index = Utf16(Between(begin_, place)).size();
  const std::size_t position = index + consumed;
  return ParseException(String(reason),
                        String(reason) + u" JSON Syntax Error : " + Description(text, position),
                        static_cast<std::int32_t>(position), PlaceOf(text, index));
}

template class Source<char16_t>;
template class Source<char>;

}  // namespace zentavo::json_internal
