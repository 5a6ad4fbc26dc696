// The scanner: one token at a time from the formula's text.
#include <array>

#include "zentavo/formula/evaluation_state.h"
#include "zentavo/formula/parser.h"
#include "zentavo/framework/exception.h"
#include "zentavo/framework/number_text.h"
#include "zentavo/genlib/number_reading.h"

namespace zentavo {

namespace {

enum class UnitClass : std::uint8_t {
  kUnknown,
  kEnd,
  kBlank,
  kMarker,
  kParameter,
  kNot,
  kOperator,
  kDigit,
  kAlpha,
  kQuote,
};

// In this order the characters give the tokens from tokAdd on.
constexpr StringView kOperatorUnits = u"+-*/()&|,=<>";

// Letters are 'A' to 'z', the six marks between them included, '@', and all from 128 on.
constexpr auto kClasses = [] {
  std::array<UnitClass, 128> classes{};
  classes[0] = UnitClass::kEnd;
  for (std::size_t marker = 1; marker <= 4; ++marker) classes[marker] = UnitClass::kMarker;
  classes[u' '] = classes[u'\t'] = UnitClass::kBlank;
  classes[u'%'] = UnitClass::kParameter;
  classes[u'!'] = UnitClass::kNot;
  classes[u'\''] = UnitClass::kQuote;
  for (const char16_t unit : kOperatorUnits) classes[unit] = UnitClass::kOperator;
  for (std::size_t unit = u'0'; unit <= u'9'; ++unit) classes[unit] = UnitClass::kDigit;
  for (std::size_t unit = u'@'; unit <= u'z'; ++unit) classes[unit] = UnitClass::kAlpha;
  return classes;
}();

constexpr auto kOperatorTokens = [] {
  std::array<TTokenTypes, 128> tokens{};
  for (std::size_t index = 0; index < kOperatorUnits.size(); ++index) {
    tokens[kOperatorUnits[index]] = static_cast<TTokenTypes>(tokAdd + index);
  }
  return tokens;
}();

UnitClass ClassOf(char16_t unit) {
  return unit < 128 ? kClasses[unit] : UnitClass::kAlpha;
}

// Whole numbers of so many digits are exact in a double.
constexpr std::int32_t kExactDigits = 15;

bool ContinuesIdentifier(char16_t unit) {
  const UnitClass unit_class = ClassOf(unit);
  return unit_class == UnitClass::kAlpha || unit_class == UnitClass::kDigit || unit == u'.';
}

}  // namespace

void TXParser::NextItem() {
  if (flen < cptr) {
    state_->token_start = cptr;
    CToken.TokenType = tokNull;
    return;
  }
  CToken.TokenIdent = nullptr;
  while (ClassOf(UnitAt(cptr)) == UnitClass::kBlank) ++cptr;
  state_->token_start = cptr;
  const char16_t unit = UnitAt(cptr);
  switch (ClassOf(unit)) {
    case UnitClass::kEnd:
      CToken.TokenType = tokNull;
      CToken.TokenValue.clear();
      return;
    case UnitClass::kMarker: ReadMarker(unit); break;
    case UnitClass::kParameter: ReadParameter(); break;
    case UnitClass::kNot:
      ++cptr;
      CToken.TokenType = tokNot;
      TakeTokenText();
      break;
    case UnitClass::kOperator: ReadOperator(kOperatorTokens[unit]); break;
    case UnitClass::kDigit: ReadNumber(); break;
    case UnitClass::kAlpha: ReadIdentifier(); break;
    case UnitClass::kQuote: ReadString(); break;
    default:
      ParserError(u"Unknown field/variable/function : " + String(1, unit), StringView(&unit, 1));
  }
  if (FBuffer.Size() > 0) SaveToken();
}

void TXParser::TakeTokenText() {
  const std::int32_t start = state_->token_start;
  const auto length = static_cast<std::size_t>(cptr - start);
  if (length == 1 && !CToken.TokenValue.empty()) {
    CToken.TokenValue.resize(1);
    CToken.TokenValue.front() = UnitAt(start);
  } else {
    CToken.TokenValue.assign(FFormula.data() + (start - 1), length);
  }
}

void TXParser::ReadParameter() {
  const char16_t unit = NextCh();
  if (!IsDigit(unit)) {
    const String name = unit == 0 ? String(u"%") : String{u'%', unit};
    ParserError(u"Unknown field/variable/function : " + name, name);
  }
  ++cptr;
  CToken.TokenType = tokParamArg;
  CToken.TokenValue.assign(1, unit);
}

void TXParser::ReadOperator(TTokenTypes token) {
  const char16_t next = NextCh();
  if ((token == tokLess || token == tokGreater) && next == u'=') {
    ++cptr;
    token = static_cast<TTokenTypes>(token + 2);
  } else if (token == tokLess && next == u'>') {
    ++cptr;
    token = tokNotEqual;
  }
  CToken.TokenType = token;
  TakeTokenText();
}

// Digits, at most one '.', exponents with at most a '-'.
void TXParser::ReadNumber() {
  std::int64_t whole = 0;
  char16_t unit = UnitAt(cptr);
  for (; IsDigit(unit) && cptr - state_->token_start < kExactDigits; unit = NextCh()) {
    whole = whole * 10 + (unit - u'0');
  }
  const bool all_read = !IsDigit(unit) && unit != u'.' && unit != u'e' && unit != u'E';
  if (!all_read) SkipNumber();
  CToken.TokenType = tokNumber;
  CToken.TokenData.Number = nullptr;
  TakeTokenText();
  // A plain number in pre-compiled text counts 0: compiling would have stored its value.
  state_->token_number = 0;
  if (Compiled()) return;
  state_->token_number = all_read ? static_cast<double>(whole) : NumberOfToken();
}

void TXParser::SkipNumber() {
  bool point_seen = false;
  for (char16_t unit = UnitAt(cptr), before = 0;; before = unit, unit = NextCh()) {
    if (IsDigit(unit) || unit == u'e' || unit == u'E') continue;
    if (unit == u'-' && (before == u'e' || before == u'E')) continue;
    if (unit != u'.' || point_seen) break;
    point_seen = true;
  }
}

double TXParser::NumberOfToken() const {
  const auto value = TryStrToFloat(CToken.TokenValue, u'.');
  if (!value) {
    ParserError(u"'" + Excerpt(CToken.TokenValue) + u"' is not a valid floating point value",
                CToken.TokenValue);
  }
  return *value;
}

void TXParser::ReadIdentifier() {
  while (ContinuesIdentifier(UnitAt(cptr))) ++cptr;
  CToken.TokenType = tokIdentifier;
  TakeTokenText();
  ClassifyIdentifier();
}

void TXParser::ClassifyIdentifier() {
  const TIdentInfo* found = nullptr;
  if (!state_->has_hooks || !UserResolve()) {
    if (SearchIdent(CToken.TokenValue, CToken.TokenIdent)) {
      found = CToken.TokenIdent;
      CToken.TokenType = found->IdentToken;
      if (CToken.TokenType == tokUserFunction)
        FKeepPtr = static_cast<BufferPosition>(FBuffer.Size());
    } else if (CanEvaluate(CToken.TokenValue, nullptr, &CToken.TokenData.Cookie)) {
      CToken.TokenType = tokUserEvaluate;
    } else {
      ParserError(u"Unknown field/variable/function : " + Excerpt(CToken.TokenValue),
                  CToken.TokenValue);
    }
  }
  if (FormulaRecorder* recorder = state_->Recorder())
    recorder->Name(CToken.TokenValue, cptr, found);
}

void TXParser::ReadString() {
  CToken.TokenType = tokString;
  CToken.TokenValue.clear();
  do {
    const auto start = static_cast<std::size_t>(cptr);  // the index behind the quote
    char16_t unit = NextCh();
    while (unit != u'\'' && unit != u'\0') unit = NextCh();
    if (unit == u'\0') ParserError(u"' Expected");
    // The first of two quotes in a row belongs to the text.
    const std::size_t quote = NextCh() == u'\'' ? 1 : 0;
    const auto end = static_cast<std::size_t>(cptr) - 2;
    CToken.TokenValue.append(FFormula, start, end - start + quote);
  } while (cptr <= flen && UnitAt(cptr) == u'\'');
}

}  // namespace zentavo
