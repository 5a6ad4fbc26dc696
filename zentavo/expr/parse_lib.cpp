#include "zentavo/expr/parse_lib.h"

#include <algorithm>
#include <cstddef>

#include "zentavo/expr/parameter_scan.h"
#include "zentavo/foundation/errors.h"

namespace zentavo {

using script_scan::LengthOf;
using script_scan::Piece;
using script_scan::UnitAt;

namespace {

constexpr bool IsSpace(char16_t unit) {
  return unit == u' ' || unit == u'\t' || unit == u'\n' || unit == u'\r';
}

void SkipToken(StringView text, std::int32_t& position) {
  while (IsToken(UnitAt(text, position))) ++position;
}

// Moves to the first `unit` behind `position`, or behind the text.
void SkipTo(StringView text, std::int32_t& position, char16_t unit) {
  const auto found = text.find(unit, static_cast<std::size_t>(position));
  position = found == StringView::npos ? LengthOf(text) + 1 : static_cast<std::int32_t>(found) + 1;
}

// The way over a block that scans it.
struct Scanner {
  void operator()(std::int32_t& position, char16_t open, char16_t close) const {
    SkipBlock(text, position, open, close);
  }
  StringView text;
};

}  // namespace

namespace script_scan {

void RaiseExpected(StringView what) {
  throw EScriptException(ScriptMessage(smExpected, what));
}

void RaiseTooDeep() {
  throw EScriptException(u"Blocks nested too deeply");
}

}  // namespace script_scan

void SkipSpaces(StringView Text, std::int32_t& Position) {
  Position = std::max(Position, 1);
  while (IsSpace(UnitAt(Text, Position))) ++Position;
}

void SkipQuotes(StringView Text, std::int32_t& Position) {
  Position = std::max(Position, 1);
  SkipTo(Text, Position, u'\'');
}

void SkipBlock(StringView Text, std::int32_t& Position, char16_t OpenChar, char16_t CloseChar) {
  const std::int32_t length = LengthOf(Text);
  std::int32_t at = std::max(Position, 1);
  std::int32_t depth = 1;
  while (at < length && depth > 0) {
    const char16_t unit = UnitAt(Text, ++at);
    if (unit == u'\'') {
      SkipQuotes(Text, at);
    } else if (unit == OpenChar) {
      if (++depth > kMaxBlockNesting) script_scan::RaiseTooDeep();
    } else if (unit == CloseChar) {
      --depth;
    }
  }
  const bool closed = at <= length && UnitAt(Text, at) == CloseChar;
  if (!closed) script_scan::RaiseExpected(String{u'\'', CloseChar, u'\''});
  Position = at;
}

String GetBlock(StringView Text, std::int32_t& Position, char16_t OpenChar, char16_t CloseChar) {
  const std::int32_t start = std::max(Position, 1) + 1;
  SkipBlock(Text, Position, OpenChar, CloseChar);
  return String(Piece(Text, start, Position));
}

String GetName(StringView Text, std::int32_t& Position) {
  SkipSpaces(Text, Position);
  const std::int32_t start = Position;
  if (IsAlpha(UnitAt(Text, Position))) SkipToken(Text, Position);
  return String(Piece(Text, start, Position));
}

String GetParameter(StringView Text, std::int32_t& Position) {
  std::int32_t at = Position;
  String parameter(script_scan::ScanParameter(Text, at, Scanner{Text}));
  Position = at;
  return parameter;
}

void GetFunctionParameters(StringView Text, std::int32_t& Position, TStringList& Parameters) {
  Parameters.Clear();
  std::int32_t at = Position;
  script_scan::ScanParameters(Text, at, Scanner{Text},
                              [&](StringView parameter) { Parameters.Add(parameter); });
  Position = at;
}

std::int32_t CountFunctionParameters(StringView Text, std::int32_t Position) {
  std::int32_t count = 0;
  script_scan::ScanParameters(Text, Position, Scanner{Text}, [&](StringView) { ++count; });
  return count;
}

TObject* GetSection(const TStringList& Sections, StringView Name, bool RaiseIfMissing) {
  const std::int32_t index = Sections.IndexOf(Name);
  if (index >= 0) return Sections.Objects(index);
  if (RaiseIfMissing) ZentavoErrorFmt(ScriptMessage(smSectionNotFound), {Name});
  return nullptr;
}

void Expected(StringView Text) {
  ZentavoErrorFmt(ScriptMessage(smExpected), {Text});
}

bool IsLegalToken(StringView Text) {
  return !Text.empty() && IsAlpha(Text.front()) &&
         std::all_of(Text.begin(), Text.end(), [](char16_t unit) { return IsToken(unit); });
}

String GetInstruction(StringView Text, std::int32_t& Position) {
  SkipSpaces(Text, Position);
  const std::int32_t start = Position;
  while (Position <= LengthOf(Text) && UnitAt(Text, Position) != u';') {
    if (UnitAt(Text, Position) == u'\'') SkipQuotes(Text, Position);
    Position = std::min(Position, LengthOf(Text)) + 1;
  }
  return String(Piece(Text, start, Position));
}

String ExtractCommaName(StringView Text, std::int32_t& Position) {
  const std::int32_t start = std::max(Position, 1);
  std::int32_t end = start - 1;
  SkipTo(Text, end, u',');
  Position = std::max(start, std::min(end, LengthOf(Text)) + 1);
  return Trim(Piece(Text, start, end));
}

}  // namespace zentavo
