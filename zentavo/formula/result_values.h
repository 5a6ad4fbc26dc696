// What the evaluation does with values as a whole.
#pragma once

#include "zentavo/formula/debug_text.h"
#include "zentavo/formula/token.h"

namespace zentavo {

// As a new value is: undefined, 0, no texts. Keeps the room of its texts.
inline void MakeFresh(TResult& result) {
  result.ResultType = resUndefined;
  result.ResultNum = 0;
  if (!result.ResultStr.empty()) result.ResultStr.clear();
  result.DebugStr.Clear();
}

inline void SetTruth(TResult& result, bool value) {
  result.ResultType = resNumber;
  result.ResultNum = value ? 1 : 0;
}

// A copy, type included, whose debug text stays a node of `trace`.
inline void CopyResult(TResult& to, const TResult& from, DebugTrace& trace) {
  to.ResultType = from.ResultType;
  to.ResultNum = from.ResultNum;
  to.ResultStr = from.ResultStr;
  trace.Share(to.DebugStr, from.DebugStr);
}

// The value as text: a string as it is, dates and times as the thread's settings print them, an
// undefined value as the empty text, everything else as a number.
String ResultText(const TResult& result);

}  // namespace zentavo
