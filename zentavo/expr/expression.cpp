#include "zentavo/expr/expression.h"

#include <cstddef>

#include "zentavo/expr/script_messages.h"
#include "zentavo/expr/tokenizer.h"
#include "zentavo/foundation/errors.h"
#include "zentavo/framework/exception.h"
#include "zentavo/framework/format.h"

namespace zentavo {

namespace {

constexpr std::int32_t kPrefixLevel = 7;

bool IsOpening(const TSourceToken& token) {
  return token.TokenKind() == tkOpen || token.TokenKind() == tkComma;
}

}  // namespace

// One pass over the tokens: what came last decides what may come next.
class TExpression::Converter {
 public:
  explicit Converter(TExpression& expression) : expression_(expression) {}

  // False when the parentheses do not close.
  bool Take(TSourceToken& token) {
    switch (token.TokenKind()) {
      case tkOperator:
      case tkCustomOperator: TakeOperator(token); return true;
      case tkOperand: TakeOperand(token); return true;
      case tkOpen: TakeOpen(token); return true;
      case tkClose: return TakeClose();
      case tkComma: return TakeComma(token);
      default: Unexpected(token.Name());
    }
  }

  bool Finish() {
    if (depth_ != 0) expression_.FatalError(ScriptMessage(smExpectedSymbol, u")"));
    TTokenList& stack = expression_.FStack;
    while (!stack.empty() && !IsOpening(stack.back())) expression_.PopOperator();
    return stack.empty();
  }

 private:
  enum class Last : std::uint8_t { kNothing, kOperand, kOperator };

  [[noreturn]] void Unexpected(StringView symbol) const {
    expression_.FatalError(ScriptMessage(smUnexpectedSymbol, symbol));
  }

  void TakeOperator(TSourceToken& token) {
    TTokenList& stack = expression_.FStack;
    const bool negates = token.Operator() == opSubtract && last_ != Last::kOperand &&
                         (stack.empty() || last_ == Last::kOperator);
    if (negates) {
      token.FOperator = opNegative;
      token.FLevel = kPrefixLevel;
    }
    while (!stack.empty() && token.Level() <= stack.back().Level()) expression_.PopOperator();
    stack.push_back(token.Copy());
    last_ = Last::kOperator;
  }

  void TakeOperand(const TSourceToken& token) {
    expression_.Emit(token);
    if (last_ == Last::kOperand) expression_.FatalError(ScriptMessage(smMissingOperator));
    last_ = Last::kOperand;
  }

  void TakeOpen(const TSourceToken& token) {
    if (++depth_ > kMaxParenthesisNesting) {
      expression_.FatalError(u"Parentheses nested too deeply");
    }
    expression_.FStack.push_back(token.Copy());
    last_ = Last::kOperator;
  }

  bool TakeClose() {
    if (depth_ == 0) Unexpected(u")");
    --depth_;
    if (!expression_.CloseStack()) return false;
    last_ = Last::kOperand;
    return true;
  }

  bool TakeComma(const TSourceToken& token) {
    if (depth_ < 1) Unexpected(u",");
    if (!expression_.CloseStack()) return false;
    expression_.FStack.push_back(token.Copy());
    last_ = Last::kOperator;
    return true;
  }

  TExpression& expression_;
  Last last_ = Last::kNothing;
  std::int32_t depth_ = 0;
};

TExpression::TExpression() = default;
TExpression::~TExpression() = default;

void TExpression::Clear() {
  FInFix.clear();
  FStack.clear();
}

void TExpression::CompileExpression(StringView AExpression, TCodeList& CodeList,
                                    const TStringList* Variables, const TStringList* Functions) {
  FPostFix = &CodeList;
  Clear();
  TTokenizer tokenizer;
  tokenizer.Tokenize(AExpression, FInFix, Variables, Functions);
  ConvertInFixToPostFix();
}

void TExpression::CompileExpression(StringView AExpression, TCodeList& CodeList,
                                    TTokenizer& Tokenizer) {
  FPostFix = &CodeList;
  Clear();
  Tokenizer.Tokenize(AExpression, FInFix, nullptr, nullptr);
  ConvertInFixToPostFix();
}

void TExpression::GetTokenList(const TTokenList& List, std::int32_t From, std::int32_t Till) {
  Clear();
  for (std::int32_t index = From; index <= Till; ++index) {
    const bool valid = index >= 0 && static_cast<std::size_t>(index) < List.size();
    if (!valid) throw EListError(Format(u"List index out of bounds (%d)", {index}));
    FInFix.push_back(List[static_cast<std::size_t>(index)].Copy());
  }
  ConvertInFixToPostFix();
}

void TExpression::FatalError(StringView Msg) {
  ZentavoError(Msg);
}

bool TExpression::ConvertInFixToPostFix() {
  if (FPostFix == nullptr) FatalError(u"Code list is missing");
  Converter converter(*this);
  for (TSourceToken& token : FInFix) {
    if (!converter.Take(token)) return false;
  }
  return converter.Finish();
}

void TExpression::Emit(const TSourceToken& Token) {
  FPostFix->push_back(Token.CreateInstrunction());
}

void TExpression::PopOperator() {
  Emit(FStack.back());
  FStack.pop_back();
}

bool TExpression::CloseStack() {
  while (!FStack.empty() && !IsOpening(FStack.back())) PopOperator();
  if (FStack.empty()) return false;
  FStack.pop_back();
  return true;
}

}  // namespace zentavo
