// JSON text and the steps that readers take in it: internal to the JSON classes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "zentavo/framework/text.h"
#include "zentavo/json/errors.h"

namespace zentavo::json_internal {

// Text in UTF-16, or in UTF-8 that is read as the UTF-16 text it stands for. Places in it are
// pointers; a step takes the place it begins at and returns the one it ends at.
template <typename Unit>
class Source {
 public:
  using View = std::basic_string_view<Unit>;

  explicit Source(View text) : begin_(text.data()), end_(text.data() + text.size()) {}

  const Unit* Begin() const { return begin_; }
  const Unit* End() const { return end_; }
  View Text() const { return Between(begin_, end_); }

  static View Between(const Unit* from, const Unit* to) {
    return {from, static_cast<std::size_t>(to - from)};
  }
  // False for what UTF-8 writes in several bytes; every unit of UTF-16 stands for itself.
  static bool StandsForItself(Unit unit) {
    return sizeof(Unit) > 1 || static_cast<unsigned char>(unit) < 0x80;
  }

  // The next significant unit, behind blanks and comments; the end when there is none.
  const Unit* Clean(const Unit* here) const {
    if (here != end_ && *here == ' ') ++here;  // as people write it
    return here != end_ && IsSignificant(*here) ? here : SkipBlanks(here);
  }
  // Behind a byte-order mark, if the text begins with one and `here` is its begin.
  const Unit* SkipMark(const Unit* here) const;
  // Where a bare value ends; blanks before that end belong to it.
  const Unit* BareEnd(const Unit* here) const;
  // The last unit that ends bare values; the begin when there is none behind it.
  const Unit* LastStop() const;

  // The unit that an escape stands for whose letter is at `here`, which moves behind it.
  char16_t TakeEscape(const Unit*& here) const;

  // The exception for the unit at `place`, or for the end.
  ParseException ErrorAt(StringView reason, const Unit* place) const;
  // The same, but the unit does not count as consumed.
  ParseException ErrorBefore(StringView reason, const Unit* place) const;

 private:
  static bool IsSignificant(Unit unit) {
    return static_cast<char32_t>(unit) > ' ' && unit != '/' && unit != '#';
  }
  const Unit* SkipBlanks(const Unit* here) const;
  const Unit* CommentEnd(const Unit* here) const;
  char16_t TakeHexEscape(const Unit*& here) const;
  ParseException Error(StringView reason, const Unit* place, std::size_t consumed) const;

  const Unit* begin_;
  const Unit* end_;
};

extern template class Source<char16_t>;
extern template class Source<char>;

// " at character " + how many units are consumed + " of " + the text.
String Description(StringView text, std::size_t consumed);
// The value of a hexadecimal digit, -1 for another unit.
std::int32_t HexValue(char16_t unit);

}  // namespace zentavo::json_internal
