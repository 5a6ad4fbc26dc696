// The walk over parameter lists, with the way over nested blocks left open: ParseLib scans each
// block, the tokenizer looks its end up.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "zentavo/expr/parse_lib.h"
#include "zentavo/framework/text.h"

namespace zentavo::script_scan {

inline std::int32_t LengthOf(StringView text) {
  return static_cast<std::int32_t>(text.size());
}

// The unit at `position`; 0 outside the text.
inline char16_t UnitAt(StringView text, std::int32_t position) {
  const bool inside = position >= 1 && position <= LengthOf(text);
  return inside ? text[static_cast<std::size_t>(position - 1)] : u'\0';
}

// The units from `from` to before `to`, as far as the text goes.
inline StringView Piece(StringView text, std::int32_t from, std::int32_t to) {
  const std::int32_t end = std::min(to, LengthOf(text) + 1);
  if (from >= end) return {};
  return text.substr(static_cast<std::size_t>(from - 1), static_cast<std::size_t>(end - from));
}

inline bool EndsParameter(char16_t unit) {
  return unit == u')' || unit == u',' || unit == u']';
}

[[noreturn]] void RaiseExpected(StringView what);
[[noreturn]] void RaiseTooDeep();

// `skip_block(position, open, close)` moves from an opening character to its close character.
template <typename BlockSkipper>
void StepOverPart(StringView text, std::int32_t& position, const BlockSkipper& skip_block) {
  const char16_t unit = UnitAt(text, position);
  if (unit == u'\'') {
    SkipQuotes(text, position);
  } else if (unit == u'(') {
    skip_block(position, u'(', u')');
  } else if (unit == u'[') {
    skip_block(position, u'[', u']');
  }
  position = std::min(position, LengthOf(text)) + 1;
}

template <typename BlockSkipper>
StringView ScanParameter(StringView text, std::int32_t& position, const BlockSkipper& skip_block) {
  SkipSpaces(text, position);
  const std::int32_t start = position;
  StringView parameter;
  if (UnitAt(text, position) == u'[') {
    skip_block(position, u'[', u']');
    parameter = Piece(text, start + 1, position);
    ++position;
  } else {
    while (position <= LengthOf(text) && !EndsParameter(UnitAt(text, position))) {
      StepOverPart(text, position, skip_block);
    }
    parameter = TrimView(Piece(text, start, position));
  }
  SkipSpaces(text, position);
  return parameter;
}

// Hands each parameter of the list at `position` to `take` and moves behind the list; does nothing
// but skip white space when no list starts there.
template <typename BlockSkipper, typename Taker>
void ScanParameters(StringView text, std::int32_t& position, const BlockSkipper& skip_block,
                    const Taker& take) {
  SkipSpaces(text, position);
  if (UnitAt(text, position) != u'(') return;
  const std::int32_t length = LengthOf(text);
  do {
    ++position;
    take(ScanParameter(text, position, skip_block));
    const char16_t unit = UnitAt(text, position);
    if (position <= length && unit != u')' && unit != u',') RaiseExpected(u"',' or ')'");
  } while (position <= length && UnitAt(text, position) != u')');
  if (position > length) RaiseExpected(u"')'");
  ++position;
}

}  // namespace zentavo::script_scan
