// Built-in functions that choose and test.
#include "zentavo/formula/builtin_values.h"
#include "zentavo/formula/evaluation_state.h"
#include "zentavo/formula/parser.h"
#include "zentavo/formula/result_values.h"

namespace zentavo {

void TXParser::IFProc(TResult& Result, TArguments& Args) {
  CheckArguments(Args.Count() == 3, u"IF");
  const bool holds = Args.Items(0).ResultNum != 0;
  CopyResult(Result, Args.Items(holds ? 1 : 2), *state_->active_trace);
}

void TXParser::CaseProc(TResult& Result, TArguments& Args) {
  if (Args.Count() != 2 && Args.Count() != 3) {
    RaiseAt(u"Case() : At Least 2 parameters", state_->call_position, u"Case");
  }
  const std::int32_t chosen = Args.Items(0).ResultNum != 0 ? 1 : 2;
  if (chosen < Args.Count()) CopyResult(Result, Args.Items(chosen), *state_->active_trace);
}

void TXParser::CaseofProc(TResult& Result, TArguments& Args) {
  if (Args.Count() < 3) {
    RaiseAt(u"Caseof( ): At least 3 parameters", state_->call_position, u"Caseof");
  }
  if (Args.Count() % 2 == 0) RaiseAt(u"Missing parameter", state_->call_position, u"Caseof");
  const std::int32_t selector = TruncatedInteger(Args.Items(0));
  for (std::int32_t key = 1; key < Args.Count(); key += 2) {
    if (TruncatedInteger(Args.Items(key)) == selector) {
      CopyResult(Result, Args.Items(key + 1), *state_->active_trace);
      return;
    }
  }
}

void TXParser::INLISTProc(TResult& Result, TArguments& Args) {
  CheckArguments(Args.Count() >= 2, u"InList");
  const String text = ResultText(Args.Items(0));
  bool found = false;
  for (std::int32_t index = 1; index < Args.Count() && !found; ++index) {
    found = SameText(text, ResultText(Args.Items(index)));
  }
  SetTruth(Result, found);
}

// The error text says "InStr", which callers know.
void TXParser::INStrProc(TResult& Result, TArguments& Args) {
  CheckArguments(Args.Count() == 2, u"InStr");
  const String item = ResultText(Args.Items(0));
  const StringView wanted = TrimView(item);
  StringView rest = Args.Items(1).ResultStr;
  bool found = false;
  while (!found) {
    const std::size_t comma = rest.find(u',');
    found = SameText(TrimView(rest.substr(0, comma)), wanted);
    if (comma == StringView::npos) break;
    rest.remove_prefix(comma + 1);
  }
  SetTruth(Result, found);
}

void TXParser::IsEmptyProc(TResult& Result, TArguments& Args) {
  const TResult& value = Args.Items(0);
  SetTruth(Result, value.ResultType == resString ? value.ResultStr.empty() : value.ResultNum == 0);
}

}  // namespace zentavo
