// Values and tokens of the formula language.
#pragma once

#include <cstdint>

#include "zentavo/formula/debug_text.h"
#include "zentavo/framework/text.h"

namespace zentavo {

class TIdentInfo;

// Numbers, integers and dates carry their value in the same double; the type only tags it.
enum TResultTypes : std::uint8_t {
  resUndefined,
  resString,
  resNumber,
  resInteger,
  resDate,
  resTime,
  resVariant,
};

// The order matters: comparisons are the range tokEqual..tokNotEqual, identifiers that have a value
// the range tokSysFunction..tokUserVariable, and the scanner maps operator characters by position.
enum TTokenTypes : std::uint8_t {
  tokNull,  // end of text
  tokOperator,
  tokNumber,
  tokString,
  tokVariant,
  tokIdentifier,
  tokAdd,
  tokSub,
  tokMul,
  tokDiv,
  tokOpenPar,
  tokClosePar,
  tokAnd,
  tokOr,
  tokComma,
  tokEqual,
  tokLess,
  tokGreater,
  tokLessEqual,
  tokGreaterEqual,
  tokNotEqual,
  tokSysFunction,
  tokSysVariable,
  tokPtrVariable,
  tokUserResolvedFunction,
  tokUserResolvedVariable,
  tokUserFunction,
  tokUserVariable,
  tokAndNot,
  tokXor,
  tokUserEvaluate,
  tokParamArg,
  tokNot,
};

// A value. Truth values are numbers: 1 true, 0 false.
struct TResult {
  TResultTypes ResultType = resUndefined;
  double ResultNum = 0;  // of numbers, integers, dates and times
  String ResultStr;      // of strings
  DebugText DebugStr;    // a readable rendering of what gave the value
};
using PResult = TResult*;

// What belongs to a token beside its text.
struct TTokenData {
  const char16_t* Number = nullptr;  // a pre-compiled number: its 8 bytes, unaligned
  std::int32_t Cookie = 0;           // tokUserEvaluate: what CanEvaluate stored
};

struct TToken {
  TTokenTypes TokenType = tokNull;
  TResultTypes TokenRslt = resUndefined;
  String TokenValue;  // the source text; of a string its contents without quotes
  const TIdentInfo* TokenIdent = nullptr;
  TTokenData TokenData;
};

}  // namespace zentavo
