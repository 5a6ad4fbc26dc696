// The pre-compiled form: '$', then the tokens. Numbers and identifiers that the host resolves stand
// in slots behind a marker, everything else as it was written.
//
//   \1 cookie, 8 bytes in all                  a name that CanEvaluate knows        5 units
//   \2 double, then 4 unused units             a number                             9 units
//   \3 length, units                           a text
//   \4 address of a TIdentInfo, 8 bytes        an identifier                        5 units
//
// Pre-compiled text comes from outside: what is read from it is checked before it is used.
#include <algorithm>
#include <cstring>

#include "zentavo/formula/evaluation_state.h"
#include "zentavo/formula/parser.h"

namespace zentavo {

namespace {

constexpr char16_t kCookieMarker = 1;
constexpr char16_t kNumberMarker = 2;
constexpr char16_t kStringMarker = 3;

// In units, marker included. Formulas that hosts keep rely on these sizes.
constexpr std::size_t kCookieSlot = 5;
constexpr std::size_t kNumberSlot = 9;
constexpr std::size_t kIdentSlot = 5;
constexpr std::size_t kMaxStringLength = 0xFFFF;

template <typename T>
T LoadFrom(const char16_t* units) {
  T value;
  std::memcpy(&value, units, sizeof(value));
  return value;
}

// Appends a marker and a value, and zeros up to the slot's size.
template <typename T>
void AppendSlot(TStrBuilder& buffer, char16_t marker, T value, std::size_t slot) {
  char16_t units[kNumberSlot] = {marker};
  std::memcpy(&units[1], &value, sizeof(value));
  buffer.Add(StringView(units, slot));
}

bool IsBlank(char16_t unit) {
  return unit == u' ' || unit == u'\t';
}

}  // namespace

void TXParser::SaveToken() {
  if (CToken.TokenType == tokNumber) {
    AppendSlot(FBuffer, kNumberMarker, state_->token_number, kNumberSlot);
  } else if (CToken.TokenType == tokUserEvaluate) {
    AppendSlot(FBuffer, kCookieMarker, CToken.TokenData.Cookie, kCookieSlot);
  } else {
    std::int32_t end = cptr;
    while (end <= flen && IsBlank(UnitAt(end))) ++end;
    const std::int32_t start = state_->token_start;
    if (end - start == 1) {
      FBuffer.Add(UnitAt(start));
      return;
    }
    FBuffer.Add({FFormula.data() + (start - 1), static_cast<std::size_t>(end - start)});
  }
}

// Makes the buffer end at `position`, so that what follows replaces what stood there.
bool TXParser::RewindBuffer(BufferPosition position) {
  const auto size = static_cast<BufferPosition>(FBuffer.Size());
  if (position == 0 || position > size) return false;
  FBuffer.DeleteLast(static_cast<std::int32_t>(size - position));
  return true;
}

void TXParser::ReplaceNumber(double Value, BufferPosition BufPtr) {
  if (!RewindBuffer(BufPtr)) return;
  AppendSlot(FBuffer, kNumberMarker, Value, kNumberSlot);
}

void TXParser::ReplaceString(StringView Value, BufferPosition BufPtr) {
  if (!RewindBuffer(BufPtr)) return;
  const StringView text = Value.substr(0, kMaxStringLength);
  FBuffer.Add(kStringMarker).Add(static_cast<char16_t>(text.size())).Add(text);
}

// The next `length` units, which the current position moves behind.
const char16_t* TXParser::CompiledUnits(std::size_t length) {
  const auto start = static_cast<std::size_t>(cptr - 1);
  if (FFormula.size() - start < length) ParserError(u"Invalid compiled formula");
  cptr += static_cast<std::int32_t>(length);
  return FFormula.data() + start;
}

const TIdentInfo& TXParser::CheckedIdent(std::uintptr_t address) {
  const auto* ident = reinterpret_cast<const TIdentInfo*>(address);
  if (!ParserFunctions().Holds(ident) && !Idents.Holds(ident)) {
    ParserError(u"Invalid compiled formula");
  }
  return *ident;
}

void TXParser::ReadMarker(char16_t marker) {
  if (!Compiled()) {
    ParserError(u"Unknown field/variable/function : " + String(1, marker), StringView(&marker, 1));
  }
  if (marker == kStringMarker) {
    const std::size_t length = CompiledUnits(2)[1];
    CToken.TokenType = tokString;
    CToken.TokenValue.assign(CompiledUnits(length), length);
    return;
  }
  if (marker == kNumberMarker) {
    CToken.TokenType = tokNumber;
    CToken.TokenData.Number = CompiledUnits(kNumberSlot) + 1;
    state_->token_number = LoadFrom<double>(CToken.TokenData.Number);
  } else if (marker == kCookieMarker) {
    CToken.TokenType = tokUserEvaluate;
    CToken.TokenData.Cookie = LoadFrom<std::int32_t>(CompiledUnits(kCookieSlot) + 1);
  } else {
    CToken.TokenIdent = &CheckedIdent(LoadFrom<std::uintptr_t>(CompiledUnits(kIdentSlot) + 1));
    CToken.TokenType = CToken.TokenIdent->IdentToken;
  }
  TakeTokenText();
}

}  // namespace zentavo
