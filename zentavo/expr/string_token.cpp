// The tokens of a script text.
#include <algorithm>

#include "zentavo/expr/parameter_scan.h"
#include "zentavo/expr/parse_lib.h"

namespace zentavo {

using script_scan::LengthOf;
using script_scan::Piece;
using script_scan::UnitAt;

namespace {

bool AtComment(StringView text, std::int32_t position) {
  return UnitAt(text, position) == u'/' && UnitAt(text, position + 1) == u'/';
}

void SkipRemarks(StringView text, std::int32_t& position) {
  position = std::max(position, 1);
  while (position < LengthOf(text)) {
    SkipSpaces(text, position);
    if (!AtComment(text, position)) return;
    const auto line_end = text.find(u'\r', static_cast<std::size_t>(position));
    position =
        line_end == StringView::npos ? LengthOf(text) + 1 : static_cast<std::int32_t>(line_end) + 1;
  }
}

TStringTokenType SkipNumber(StringView text, std::int32_t& position) {
  TStringTokenType type = ttInteger;
  for (;; ++position) {
    const char16_t unit = UnitAt(text, position);
    if (IsDigit(unit)) continue;
    if (unit != u'.' || type == ttFloat) return type;
    type = ttFloat;
  }
}

String TakeString(StringView text, std::int32_t& position) {
  const std::int32_t start = position + 1;
  SkipQuotes(text, position);
  const StringView inside = Piece(text, start, position);
  position = std::min(position, LengthOf(text)) + 1;
  return String(inside);
}

TStringTokenType SkipSymbol(StringView text, std::int32_t& position) {
  const char16_t unit = UnitAt(text, position);
  if (IsDigit(unit)) return SkipNumber(text, position);
  if (!IsAlpha(unit)) {
    ++position;
    return ttSymbol;
  }
  while (IsToken(UnitAt(text, position))) ++position;
  return ttName;
}

}  // namespace

String GetStringToken(StringView Text, std::int32_t& Position, TStringTokenType& TokenType) {
  SkipRemarks(Text, Position);
  if (Position > LengthOf(Text)) {
    TokenType = ttEndOfTokens;
    return {};
  }
  if (UnitAt(Text, Position) == u'\'') {
    TokenType = ttString;
    return TakeString(Text, Position);
  }
  const std::int32_t start = Position;
  TokenType = SkipSymbol(Text, Position);
  return String(Piece(Text, start, Position));
}

}  // namespace zentavo
