// The grammar. It is read with stacks of its own instead of recursion, so that nesting costs no
// stack of the calling thread.
#include <array>
#include <utility>

#include "zentavo/formula/builtin_table.h"
#include "zentavo/formula/evaluation_state.h"
#include "zentavo/formula/operators.h"
#include "zentavo/formula/parser.h"
#include "zentavo/formula/result_values.h"
#include "zentavo/framework/exception.h"
#include "zentavo/framework/format.h"
#include "zentavo/framework/number_text.h"

namespace zentavo {

namespace {

enum Level : std::uint8_t { kNoOperator, kComparison, kSum, kProduct };

constexpr auto kLevels = [] {
  std::array<Level, tokNot + 1> levels{};
  for (int token = tokEqual; token <= tokNotEqual; ++token) {
    levels[static_cast<std::size_t>(token)] = kComparison;
  }
  for (const TTokenTypes token : {tokAdd, tokSub, tokOr, tokXor, tokAndNot}) levels[token] = kSum;
  for (const TTokenTypes token : {tokMul, tokDiv, tokAnd}) levels[token] = kProduct;
  return levels;
}();

Level LevelOf(TTokenTypes token) {
  return kLevels[token];
}

bool IsKnownIdentifier(TTokenTypes token) {
  return token >= tokSysFunction && token <= tokUserVariable;
}

}  // namespace

// Reads one expression. Reading alternates between two steps: a factor is read into the operand of
// the innermost open expression, or opens a further one; behind a complete factor stands an
// operator, or the innermost expression ends and is itself the complete factor of the one around
// it.
class ExpressionReader {
 public:
  explicit ExpressionReader(TXParser& parser)
      : parser_(parser), state_(*parser.state_), depth_(state_.open.size()) {}

  void Read(TResult& result) {
    Open({.kind = OpenExpression::Kind::kWhole, .operand = &result, .first_operator = 0});
    do {
      while (StartFactor()) {
      }
      while (!StartRightOperand() && CloseExpression()) {
      }
    } while (state_.open.size() > depth_);
  }

  // Reads the arguments of a call into `arguments`, which the caller owns.
  void ReadArguments(TArguments& arguments) {
    if (!ArgumentsFollow()) return;
    if (Recorder() != nullptr) Recorder()->NotRepeatable();
    TakeOpenParenthesis();
    do {
      TResult& argument = arguments.AddNew();
      parser_.NextItem();
      Read(argument);
      EndArgument(argument);
    } while (Token() == tokComma);
  }

 private:
  TTokenTypes Token() const { return parser_.CToken.TokenType; }
  OpenExpression& Innermost() { return state_.open.back(); }
  FormulaRecorder* Recorder() const { return state_.Recorder(); }

  void Open(OpenExpression expression) {
    if (state_.open.size() > kMaxFormulaNesting) parser_.ParserError(u"Formula too complex");
    expression.first_operator = state_.operators.size();
    state_.open.push_back(expression);
  }

  // Returns true when the factor opened an expression, whose first factor comes next.
  bool StartFactor() {
    TTokenTypes sign = tokNull;
    const std::int32_t sign_position = state_.token_start;
    if (Token() == tokSub || Token() == tokNot) {
      sign = Token();
      parser_.NextItem();
    }
    TResult& operand = *Innermost().operand;
    if (Token() == tokOpenPar) {
      TResult& inner = operand;
      Open({.kind = OpenExpression::Kind::kParentheses,
            .sign = sign,
            .sign_position = sign_position,
            .operand = &inner,
            .first_operator = 0});
      parser_.NextItem();
      return true;
    }
    if (OpensCall(operand, sign, sign_position)) return true;
    ReadFactor(operand);
    ApplySign(sign, sign_position, operand);
    return false;
  }

  bool OpensCall(TResult& operand, TTokenTypes sign, std::int32_t sign_position) {
    if (Token() != tokSysFunction && Token() != tokUserFunction) return false;
    if (!ArgumentsFollow()) return false;
    const TIdentInfo* function = parser_.CToken.TokenIdent;
    const std::int32_t position = state_.token_start;
    operand.ResultType = function->IdentType;
    TArguments& arguments = state_.argument_lists.Push();
    arguments.Clear();
    TakeOpenParenthesis();
    Open({.kind = OpenExpression::Kind::kArgument,
          .sign = sign,
          .sign_position = sign_position,
          .operand = &arguments.AddNew(),
          .first_operator = 0,
          .function = function,
          .arguments = &arguments,
          .call_result = &operand,
          .call_position = position});
    parser_.NextItem();
    return true;
  }

  // Blanks may stand between a function's name and its parenthesis.
  bool ArgumentsFollow() const {
    std::int32_t next = parser_.cptr;
    while (parser_.UnitAt(next) == u' ' || parser_.UnitAt(next) == u'\t') ++next;
    return parser_.UnitAt(next) == u'(';
  }

  void TakeOpenParenthesis() {
    parser_.NextItem();
    if (Token() != tokOpenPar) parser_.ParserError(u"( Expected");
  }

  void EndArgument(TResult& argument) {
    Parenthesise(argument);
    if (Token() != tokComma && Token() != tokClosePar) parser_.ParserError(u", or ) Expected");
  }

  void Parenthesise(TResult& result) {
    DebugTrace& trace = *state_.active_trace;
    trace.Assign(result.DebugStr, trace.AddParentheses(trace.NodeOf(result.DebugStr)));
    if (Recorder() != nullptr) Recorder()->Parentheses();
  }

  // A factor that opens nothing. One that is no value leaves the operand as it was.
  void ReadFactor(TResult& operand) {
    const TTokenTypes token = Token();
    if (token == tokNumber) {
      operand.ResultType = resNumber;
      operand.ResultNum = state_.token_number;
      DebugTrace& trace = *state_.active_trace;
      trace.Assign(operand.DebugStr, trace.AddNumber(operand.ResultNum));
      if (Recorder() != nullptr) Recorder()->Number(operand.ResultNum);
    } else if (token == tokString) {
      operand.ResultType = resString;
      operand.ResultStr = parser_.CToken.TokenValue;
      operand.DebugStr = parser_.CToken.TokenValue;
      if (Recorder() != nullptr) Recorder()->Text(operand.ResultStr);
    } else if (token == tokParamArg) {
      parser_.ReadParamArg(operand);
    } else if (token == tokUserEvaluate) {
      const String name = parser_.CToken.TokenValue;
      std::int32_t cookie = parser_.CToken.TokenData.Cookie;
      parser_.CanEvaluate(name, &operand, &cookie);
      if (Recorder() != nullptr) Recorder()->NotRepeatable();
    } else if (IsKnownIdentifier(token)) {
      ReadIdentifier(operand);
    } else {
      if (Recorder() != nullptr) Recorder()->Nothing();
      return;
    }
    parser_.NextItem();
  }

  void ReadIdentifier(TResult& operand) {
    const TIdentInfo* ident = parser_.CToken.TokenIdent;
    const std::int32_t position = state_.token_start;
    if (ident != nullptr) {
      parser_.ResolveKnown(operand, *ident);
      if (Recorder() != nullptr) Recorder()->Identifier(*ident, position);
    } else if (Recorder() != nullptr) {
      Recorder()->NotRepeatable();  // a descendant's own token
    }
  }

  // Returns true when a binary operator follows, whose right operand comes next. Otherwise the
  // innermost expression is complete.
  bool StartRightOperand() {
    const Level level = LevelOf(Token());
    Reduce(level);
    if (level == kNoOperator) return false;
    OpenExpression& expression = Innermost();
    state_.operators.push_back({Token(), state_.token_start, expression.operand});
    expression.operand = &state_.values.Push();
    MakeFresh(*expression.operand);
    parser_.NextItem();
    return true;
  }

  // Applies the innermost expression's pending operators that bind at least as tightly as `level`.
  void Reduce(Level level) {
    OpenExpression& expression = Innermost();
    while (state_.operators.size() > expression.first_operator) {
      const PendingOperator pending = state_.operators.back();
      if (LevelOf(pending.token) < level) return;
      parser_.ApplyBinary(pending.token, *pending.left, *expression.operand, pending.position);
      expression.operand = pending.left;
      state_.operators.pop_back();
      state_.values.Pop();
    }
  }

  // Ends the innermost expression. Returns true when it was the last piece of a factor of the
  // expression around it, false when a further argument comes or the whole expression is read.
  bool CloseExpression() {
    const OpenExpression expression = Innermost();
    if (expression.kind == OpenExpression::Kind::kWhole) {
      state_.open.pop_back();
      return false;
    }
    TResult* result = expression.operand;
    if (expression.kind == OpenExpression::Kind::kParentheses) {
      Parenthesise(*result);
      if (Token() != tokClosePar) parser_.ParserError(u"Close Parenthesis Needed");
    } else {
      EndArgument(*result);
      if (Token() == tokComma) {
        Innermost().operand = &expression.arguments->AddNew();
        parser_.NextItem();
        return false;
      }
      result = expression.call_result;
      Call(expression);
    }
    state_.open.pop_back();
    parser_.NextItem();
    ApplySign(expression.sign, expression.sign_position, *result);
    return true;
  }

  void Call(const OpenExpression& call) {
    state_.call_position = call.call_position;
    parser_.ExecFunction(*call.call_result, *call.function, *call.arguments);
    if (Recorder() != nullptr) {
      Recorder()->Call(*call.function, call.arguments->Count(), call.call_position);
    }
    state_.argument_lists.Pop();
  }

  void ApplySign(TTokenTypes sign, std::int32_t position, TResult& result) {
    if (sign != tokNull) parser_.ApplyUnary(sign, result, position);
  }

  TXParser& parser_;
  EvaluationState& state_;
  const std::size_t depth_;
};

void TXParser::ReadWholeExpression() {
  ExpressionReader(*this).Read(CResult);
}

// The two below are for descendants, whose use of them a recording cannot follow.
void TXParser::BooleanExpression(TResult& Result) {
  if (FormulaRecorder* recorder = state_->Recorder()) recorder->NotRepeatable();
  ExpressionReader(*this).Read(Result);
}

void TXParser::GetFunctionArguments(TArguments& Args) {
  ExpressionReader(*this).ReadArguments(Args);
}

void TXParser::ApplyBinary(TTokenTypes Operator, TResult& Left, const TResult& Right,
                           std::int32_t Position) {
  if (const OperatorFault fault = ApplyOperator(Operator, Left, Right)) RaiseAt(fault, Position);
  if (const char* text = OperatorDebugText(Operator)) {
    DebugTrace& trace = *state_->active_trace;
    const DebugTrace::NodeId left = trace.NodeOf(Left.DebugStr);
    trace.Assign(Left.DebugStr, trace.AddBinary(left, text, trace.NodeOf(Right.DebugStr)));
  }
  if (FormulaRecorder* recorder = state_->Recorder()) recorder->Binary(Operator, Position);
}

void TXParser::ApplyUnary(TTokenTypes Operator, TResult& Result, std::int32_t Position) {
  const OperatorFault fault = Operator == tokSub ? Negate(Result) : NotProc(Result);
  if (fault != nullptr) RaiseAt(fault, Position);
  if (Operator == tokSub) {
    DebugTrace& trace = *state_->active_trace;
    trace.Assign(Result.DebugStr, trace.AddNegation(trace.NodeOf(Result.DebugStr)));
  }
  if (FormulaRecorder* recorder = state_->Recorder()) recorder->Unary(Operator, Position);
}

void TXParser::ResolveKnown(TResult& Result, const TIdentInfo& Info) {
  Result.ResultType = Info.IdentType;
  if (Info.IdentToken == tokSysFunction || Info.IdentToken == tokUserFunction) {
    TArguments& arguments = state_->argument_lists.Push();
    arguments.Clear();
    const std::int32_t position = state_->token_start;
    ExpressionReader(*this).ReadArguments(arguments);
    state_->call_position = position;
    ExecFunction(Result, Info, arguments);
    state_->argument_lists.Pop();
  } else {
    ReadVariable(Result, Info);
  }
}

void TXParser::ResolveIdent(const TIdentInfo& Info, TArguments& Args, TResult& Result) {
  Result.ResultType = Info.IdentType;
  if (Info.IdentToken == tokSysFunction || Info.IdentToken == tokUserFunction) {
    ExecFunction(Result, Info, Args);
  } else {
    ReadVariable(Result, Info);
  }
}

void TXParser::ReadVariable(TResult& Result, const TIdentInfo& Info) {
  switch (Info.IdentToken) {
    case tokSysVariable: CurTimeProc(Result); break;
    case tokUserVariable: EvaluateUserVariable(Info.IdentId, Result); break;
    case tokPtrVariable: ReadPtrVariable(Result, Info); break;
    default: break;  // a descendant fills the value of the names that it resolves
  }
}

void TXParser::ReadPtrVariable(TResult& Result, const TIdentInfo& Info) {
  if (Info.IdentType == resString) {
    Result.ResultStr = *static_cast<const String*>(Info.IdentPtr);
    Result.DebugStr = Result.ResultStr;
  } else if (Info.IdentType == resNumber) {
    Result.ResultNum = *static_cast<const double*>(Info.IdentPtr);
  } else if (Info.IdentType == resInteger) {
    Result.ResultType = resNumber;
    Result.ResultNum = *static_cast<const std::int32_t*>(Info.IdentPtr);
    DebugTrace& trace = *state_->active_trace;
    trace.Assign(Result.DebugStr, trace.AddNumber(Result.ResultNum));
  }
}

void TXParser::ReadParamArg(TResult& Result) {
  const std::int32_t index = CToken.TokenValue.front() - u'1';
  if (FParamsArgs == nullptr) {
    throw EListError(Format(u"List index out of bounds (%d)", {index}));
  }
  CopyResult(Result, FParamsArgs->Items(index), *state_->active_trace);
  if (FormulaRecorder* recorder = state_->Recorder()) recorder->NotRepeatable();
}

void TXParser::ParserError(StringView Msg, StringView Name) const {
  RaiseAt(Msg, state_->token_start, Name);
}

void TXParser::RaiseAt(StringView Msg, std::int32_t Position, StringView Name) {
  throw EXParserError(String(Msg), Position, String(Name));
}

}  // namespace zentavo
