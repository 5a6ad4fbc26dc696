// The operators on values. The left operand becomes the result and keeps its type unless stated.
//
// Each returns null, or the fixed text of its error, which leaves the operands as they were; a text
// operand that is no number raises the framework's conversion error.
#pragma once

#include <array>

#include "zentavo/formula/token.h"

namespace zentavo {

using OperatorFault = const char16_t*;

OperatorFault AddProc(TResult& left, const TResult& right);
OperatorFault SubProc(TResult& left, const TResult& right);
OperatorFault MulProc(TResult& left, const TResult& right);
// A zero divisor gives 0, which callers rely on.
OperatorFault DivProc(TResult& left, const TResult& right);
OperatorFault AndProc(TResult& left, const TResult& right);
OperatorFault OrProc(TResult& left, const TResult& right);
OperatorFault XorProc(TResult& left, const TResult& right);
OperatorFault AndNotProc(TResult& left, const TResult& right);
OperatorFault Compare(TTokenTypes comparison, TResult& left, const TResult& right);
OperatorFault Negate(TResult& result);
OperatorFault NotProc(TResult& result);

// The same on two numbers.
inline double ApplyToNumbers(TTokenTypes token, double left, double right) {
  switch (token) {
    case tokAdd: return left + right;
    case tokSub: return left - right;
    case tokMul: return left * right;
    case tokDiv: return right == 0 ? 0 : left / right;
    case tokAnd: return left != 0 && right != 0;
    case tokOr: return left != 0 || right != 0;
    case tokXor: return (left != 0) != (right != 0);
    case tokAndNot: return left != 0 && right == 0;
    case tokEqual: return left - right == 0;
    case tokLess: return left - right < 0;
    case tokGreater: return left - right > 0;
    case tokLessEqual: return left - right <= 0;
    case tokGreaterEqual: return left - right >= 0;
    default: return left - right != 0;
  }
}

OperatorFault ApplyToOthers(TTokenTypes token, TResult& left, const TResult& right);

inline OperatorFault ApplyOperator(TTokenTypes token, TResult& left, const TResult& right) {
  // What is almost always so.
  if (left.ResultType == resNumber && right.ResultType == resNumber) {
    left.ResultNum = ApplyToNumbers(token, left.ResultNum, right.ResultNum);
    return nullptr;
  }
  return ApplyToOthers(token, left, right);
}

// How the operator stands in debug texts; null for those that leave the debug text unchanged.
inline const char* OperatorDebugText(TTokenTypes token) {
  static constexpr auto kTexts = [] {
    std::array<const char*, tokNot + 1> texts{};
    texts[tokAdd] = "+";
    texts[tokSub] = "-";
    texts[tokMul] = "*";
    texts[tokDiv] = "/";
    texts[tokEqual] = "=";
    texts[tokLess] = "<";
    texts[tokGreater] = ">";
    texts[tokLessEqual] = "<=";
    texts[tokGreaterEqual] = ">=";
    texts[tokNotEqual] = "<>";
    return texts;
  }();
  return kTexts[token];
}

// Reads a text as a number with the thread's decimal separator, or '.'; a blank one is 0.
double SafeStrToFloat(StringView text);

}  // namespace zentavo
