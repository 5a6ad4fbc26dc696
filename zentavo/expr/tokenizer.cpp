#include "zentavo/expr/tokenizer.h"

#include <array>
#include <optional>
#include <utility>

#include "zentavo/expr/argument_counter.h"
#include "zentavo/expr/literals.h"
#include "zentavo/expr/parameter_scan.h"
#include "zentavo/expr/parse_lib.h"
#include "zentavo/foundation/errors.h"

namespace zentavo {

using script_scan::Piece;
using script_scan::UnitAt;

namespace {

constexpr std::int32_t kUncounted = -1;
constexpr std::int32_t kPrefixLevel = 7;
constexpr std::int32_t kSumLevel = 3;

constexpr bool IsLetter(char16_t unit) {
  return IsAlpha(unit) && unit != u'_';
}

constexpr bool IsNumberUnit(char16_t unit) {
  return IsDigit(unit) || unit == u'.';
}

constexpr bool IsWordUnit(char16_t unit) {
  return IsToken(unit) || unit == u'.';
}

struct Keyword {
  StringView name;
  TTokenKind kind;
  TOperator op;
  std::int32_t level;
};

constexpr std::array<Keyword, 6> kKeywords = {{
    {u"null", tkOperand, opString, 0},
    {u"or", tkOperator, opOr, 2},
    {u"and", tkOperator, opAnd, 2},
    {u"not", tkOperator, opNot, kPrefixLevel},
    {u"mod", tkOperator, opMod, 5},
    {u"div", tkOperator, opDiv, 5},
}};

String AsciiLower(StringView word) {
  String lower(word);
  for (char16_t& unit : lower) {
    if (unit >= u'A' && unit <= u'Z') unit = static_cast<char16_t>(unit + 32);
  }
  return lower;
}

std::int32_t AttachedTo(const TStringList* names, StringView name) {
  const std::int32_t index = names == nullptr ? -1 : names->IndexOf(name);
  return index < 0 ? 0 : static_cast<std::int32_t>(names->Value(index));
}

}  // namespace

TTokenizer::TTokenizer() = default;
TTokenizer::~TTokenizer() = default;

std::int32_t TTokenizer::GetFunctionId(StringView Name, std::int32_t& ParamCount) {
  ParamCount = kUncounted;
  return AttachedTo(FFunctions, Name);
}

std::int32_t TTokenizer::GetStackVariableId(StringView) {
  return -1;
}

bool TTokenizer::IsStackVariable(StringView) {
  return false;
}

std::int32_t TTokenizer::GetVariableId(StringView Name) {
  return AttachedTo(FVariables, Name);
}

Variant TTokenizer::GetParamValue(StringView) {
  return Variant::Null();
}

bool TTokenizer::Tokenize(StringView Source, TTokenList& List, const TStringList* Variables,
                          const TStringList* Functions) {
  Start(Source, Variables, Functions);
  std::int32_t depth = 0;
  while (GetToken()) {
    if (FTokenKind == tkOpen && ++depth > kMaxParenthesisNesting) {
      FatalError(u"Parentheses nested too deeply");
    }
    if (FTokenKind == tkClose) --depth;
    List.push_back(CreateToken());
  }
  return true;
}

void TTokenizer::Start(StringView Source, const TStringList* Variables,
                       const TStringList* Functions) {
  FSource = Source;
  FVariables = Variables;
  FFunctions = Functions;
  FPosition = 1;
  SrcLen = static_cast<std::int32_t>(FSource.size());
  counter_.reset();
}

bool TTokenizer::GetToken() {
  ClearToken();
  SkipSpaces(FSource, FPosition);
  if (FPosition > SrcLen) return false;
  const char16_t unit = UnitAt(FSource, FPosition);
  if (IsLetter(unit)) {
    ReadWord();
  } else if (IsDigit(unit)) {
    ReadNumber();
  } else if (unit == u'\'') {
    ReadString();
  } else if (unit == u'#') {
    ReadCharacter();
  } else if (unit == u':') {
    ReadParameter();
  } else {
    ReadSymbol();
  }
  return true;
}

TSourceToken TTokenizer::CreateToken() const {
  TSourceToken token;
  token.FName = FToken;
  token.FTokenKind = FTokenKind;
  token.FOperator = FTokenOperator;
  token.FIndex = FTokenIndex;
  token.FValue = FTokenValue;
  token.FLevel = FTokenLevel;
  return token;
}

bool TTokenizer::IsKeyWord(StringView) {
  return false;
}

bool TTokenizer::IsFunction(StringView Name, std::int32_t& ParamCount) {
  const std::int32_t id = GetFunctionId(Name, ParamCount);
  if (id == 0) return false;
  SetToken(tkOperator, opFunction, kPrefixLevel);
  FTokenIndex = id;
  return true;
}

void TTokenizer::FatalError(StringView Msg) {
  ZentavoError(Msg);
}

void TTokenizer::ClearToken() {
  FToken.clear();
  FTokenValue = Variant();
  FTokenIndex = 0;
  SetToken(tkNone, opNone);
}

void TTokenizer::SetToken(TTokenKind Kind, TOperator Operator, std::int32_t Level) {
  FTokenKind = Kind;
  FTokenOperator = Operator;
  FTokenLevel = Level;
}

void TTokenizer::SetText(std::int32_t From, std::int32_t To) {
  FToken = Piece(FSource, From, To);
}

template <typename Test>
void TTokenizer::SkipWhile(const Test& Belongs) {
  while (FPosition <= SrcLen && Belongs(UnitAt(FSource, FPosition))) ++FPosition;
}

void TTokenizer::ReadString() {
  const std::int32_t start = FPosition + 1;
  SkipQuotes(FSource, FPosition);
  if (FPosition > SrcLen) FatalError(ScriptMessage(smUnterminatedString));
  SetText(start, FPosition);
  ++FPosition;
  SetToken(tkOperand, opString);
  FTokenValue = Variant(FToken);
}

void TTokenizer::ReadCharacter() {
  const std::int32_t start = FPosition++;
  SkipWhile(IsNumberUnit);
  SetText(start, FPosition);
  SetToken(tkOperand, opString);
  FTokenValue = script_scan::ReadCharacter(StringView(FToken).substr(1));
}

void TTokenizer::ReadParameter() {
  const std::int32_t start = ++FPosition;
  SkipWhile(IsWordUnit);
  SetText(start, FPosition);
  SetToken(tkOperand, opString);
  FTokenValue = GetParamValue(FToken);
}

void TTokenizer::ReadNumber() {
  const std::int32_t start = FPosition;
  SkipWhile(IsNumberUnit);
  SetText(start, FPosition);
  const std::optional<double> number = script_scan::ReadFloat(FToken);
  if (!number) FatalError(FToken + u" is not a valid number");
  SetToken(tkOperand, opNumber);
  FTokenValue = *number;
}

void TTokenizer::ReadWord() {
  const std::int32_t start = FPosition;
  SkipWhile(IsWordUnit);
  SetText(start, FPosition);
  if (IsKeyWord(FToken)) return;
  const String lower = AsciiLower(FToken);
  if (ReadKeyword(lower)) return;
  if (IsStackVariable(FToken)) {
    SetToken(tkOperand, opStackVariable);
    FTokenIndex = GetStackVariableId(FToken);
  } else if (!ReadFunction(lower)) {
    ReadVariable();
  }
}

bool TTokenizer::ReadKeyword(StringView Lower) {
  for (const Keyword& keyword : kKeywords) {
    if (keyword.name != Lower) continue;
    SetToken(keyword.kind, keyword.op, keyword.level);
    if (keyword.kind == tkOperand) FTokenValue = Variant::Null();
    return true;
  }
  return false;
}

bool TTokenizer::ReadFunction(StringView Lower) {
  std::int32_t count = kUncounted;
  if (!IsFunction(Lower, count)) return false;
  if (count != kUncounted) CheckArgumentCount(count);
  return true;
}

void TTokenizer::CheckArgumentCount(std::int32_t Expected) {
  if (!counter_) counter_ = std::make_unique<script_scan::ArgumentCounter>(FSource);
  const std::int32_t count = counter_->Count(FPosition);
  if (count > Expected) FatalError(u"To many parameters");
  if (count < Expected) FatalError(u"Not enough parameters");
}

void TTokenizer::ReadVariable() {
  const std::int32_t id = GetVariableId(FToken);
  if (id == 0) FatalError(ScriptMessage(smUndeclaredIdentifier, FToken));
  SetToken(tkOperand, opVariable);
  FTokenIndex = id;
}

void TTokenizer::ReadSymbol() {
  const char16_t unit = UnitAt(FSource, FPosition++);
  FToken = unit;
  switch (unit) {
    case u',': SetToken(tkComma, opNone); break;
    case u'(': SetToken(tkOpen, opNone, 1); break;
    case u')': SetToken(tkClose, opNone, 1); break;
    case u'*': SetToken(tkOperator, opMultiply, 6); break;
    case u'/': SetToken(tkOperator, opDivide, 5); break;
    case u'+': SetToken(tkOperator, opAdd, kSumLevel); break;
    case u'-': SetToken(tkOperator, opSubtract, kSumLevel); break;
    case u'=': SetToken(tkOperator, opEq, kSumLevel); break;
    case u'<':
    case u'>': ReadRelation(); break;
    default: break;
  }
}

void TTokenizer::ReadRelation() {
  const bool less = FToken.front() == u'<';
  const char16_t next = UnitAt(FSource, FPosition);
  TOperator relation = less ? opLt : opGt;
  if (next == u'=') relation = less ? opLe : opGe;
  if (next == u'>' && less) relation = opNe;
  SetToken(tkOperator, relation, kSumLevel);
  if (relation == opLt || relation == opGt) return;
  FToken += next;
  ++FPosition;
}

}  // namespace zentavo
