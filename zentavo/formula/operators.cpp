#include "zentavo/formula/operators.h"

#include "zentavo/framework/number_text.h"
#include "zentavo/genlib/number_reading.h"

namespace zentavo {

namespace {

constexpr OperatorFault kDone = nullptr;
constexpr OperatorFault kNumberExpected = u"Number Expected";

bool IsNumeric(const TResult& result) {
  return result.ResultType == resNumber || result.ResultType == resInteger;
}

bool IsNumericOrDate(const TResult& result) {
  return IsNumeric(result) || result.ResultType == resDate;
}

bool HasDouble(const TResult& result) {
  return IsNumericOrDate(result) || result.ResultType == resTime;
}

bool IsString(const TResult& result) {
  return result.ResultType == resString;
}

// The operands as numbers, where one may be a text. False when the pair is none of these.
bool MixedNumbers(const TResult& left, const TResult& right, double& a, double& b) {
  if (IsString(left) && IsNumeric(right)) {
    a = LcStrToFloat(left.ResultStr);
    b = right.ResultNum;
    return true;
  }
  if (IsNumeric(left) && IsString(right)) {
    a = left.ResultNum;
    b = LcStrToFloat(right.ResultStr);
    return true;
  }
  return false;
}

bool Numbers(const TResult& left, const TResult& right, double& a, double& b) {
  if (IsNumericOrDate(left) && IsNumericOrDate(right)) {
    a = left.ResultNum;
    b = right.ResultNum;
    return true;
  }
  return MixedNumbers(left, right, a, b);
}

OperatorFault Arithmetic(TTokenTypes token, TResult& left, const TResult& right,
                         OperatorFault fault) {
  double a, b;
  if (!Numbers(left, right, a, b)) return fault;
  left.ResultNum = ApplyToNumbers(token, a, b);
  return kDone;
}

OperatorFault Logic(TTokenTypes token, TResult& left, const TResult& right) {
  if (!IsNumeric(left) || !IsNumeric(right)) return kNumberExpected;
  left.ResultNum = ApplyToNumbers(token, left.ResultNum, right.ResultNum);
  return kDone;
}

// What the comparisons look at: the difference, or the order of two texts. False when the pair does
// not compare.
bool Difference(const TResult& left, const TResult& right, double& difference) {
  if (HasDouble(left) && HasDouble(right)) {
    difference = left.ResultNum - right.ResultNum;
  } else if (IsString(left) && IsString(right)) {
    difference = CompareStr(left.ResultStr, right.ResultStr);
  } else if (IsString(left) && HasDouble(right)) {
    difference = SafeStrToFloat(left.ResultStr) - right.ResultNum;
  } else if (HasDouble(left) && IsString(right)) {
    difference = left.ResultNum - SafeStrToFloat(right.ResultStr);
  } else {
    return false;
  }
  return true;
}

}  // namespace

OperatorFault AddProc(TResult& left, const TResult& right) {
  if (IsString(left) && IsString(right)) {
    left.ResultStr += right.ResultStr;
    return kDone;
  }
  return Arithmetic(tokAdd, left, right, u"Cannot Perform the addition");
}

OperatorFault SubProc(TResult& left, const TResult& right) {
  return Arithmetic(tokSub, left, right, kNumberExpected);
}

OperatorFault MulProc(TResult& left, const TResult& right) {
  return Arithmetic(tokMul, left, right, kNumberExpected);
}

OperatorFault DivProc(TResult& left, const TResult& right) {
  if (left.ResultType == resDate || right.ResultType == resDate) return kNumberExpected;
  return Arithmetic(tokDiv, left, right, kNumberExpected);
}

OperatorFault AndProc(TResult& left, const TResult& right) {
  return Logic(tokAnd, left, right);
}
OperatorFault OrProc(TResult& left, const TResult& right) {
  return Logic(tokOr, left, right);
}
OperatorFault XorProc(TResult& left, const TResult& right) {
  return Logic(tokXor, left, right);
}
OperatorFault AndNotProc(TResult& left, const TResult& right) {
  return Logic(tokAndNot, left, right);
}

OperatorFault Compare(TTokenTypes comparison, TResult& left, const TResult& right) {
  double difference;
  if (!Difference(left, right, difference)) return u"Cannot Perform the Comparison";
  left.ResultType = resNumber;
  left.ResultNum = ApplyToNumbers(comparison, difference, 0);
  return kDone;
}

OperatorFault Negate(TResult& result) {
  if (!IsNumeric(result)) return kNumberExpected;
  result.ResultNum = -result.ResultNum;
  return kDone;
}

OperatorFault NotProc(TResult& result) {
  if (!IsNumeric(result)) return kNumberExpected;
  result.ResultNum = result.ResultNum == 0 ? 1 : 0;
  return kDone;
}

OperatorFault ApplyToOthers(TTokenTypes token, TResult& left, const TResult& right) {
  switch (token) {
    case tokAdd: return AddProc(left, right);
    case tokSub: return SubProc(left, right);
    case tokMul: return MulProc(left, right);
    case tokDiv: return DivProc(left, right);
    case tokAnd: return AndProc(left, right);
    case tokOr: return OrProc(left, right);
    case tokXor: return XorProc(left, right);
    case tokAndNot: return AndNotProc(left, right);
    default: return Compare(token, left, right);
  }
}

double SafeStrToFloat(StringView text) {
  if (TrimView(text).empty()) return 0;
  const char16_t separator = FormatSettings().DecimalSeparator;
  if (separator == u'.') return StrToFloat(text);
  String local(text);
  const std::size_t point = local.find(u'.');
  if (point != String::npos) local[point] = separator;
  return StrToFloat(local);
}

}  // namespace zentavo
