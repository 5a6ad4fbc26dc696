// Expressions compiled to postfix instructions.
//
//   TStringList variables, functions;
//   variables.AddValue(u"price", 1);
//   functions.AddValue(u"round", 1);
//   TCodeList code;
//   TExpression expression;
//   expression.CompileExpression(u"round(price * 1.24, 2)", code, &variables, &functions);
//   // price, 1.24, opMultiply, 2, opFunction
//
// The operators, their levels and what a token is: see tokenizer.h. Prefix operators pop operators
// of their level as all others do, so that "- -3" and "not not a" apply the first one to nothing
// (to Null, see evaluator.h). A call leaves its arguments in order before its opFunction, which
// does not carry their number. Parentheses may hold a comma list without a function; each value
// stays on the stack. An expression object is reusable and used by one thread at a time.
#pragma once

#include <cstdint>

#include "zentavo/expr/instruction.h"
#include "zentavo/expr/source_token.h"
#include "zentavo/framework/string_list.h"
#include "zentavo/framework/text.h"

namespace zentavo {

class TTokenizer;

// Neither copied nor moved.
class ZENTAVO_API TExpression {
 public:
  TExpression();
  TExpression(const TExpression&) = delete;
  TExpression& operator=(const TExpression&) = delete;
  ~TExpression();

  // Empties the token lists; the code list is left alone.
  void Clear();
  // Append the instructions of `AExpression` to `CodeList`, which must outlive the next compilation
  // or GetTokenList. The second takes the names from a host's tokenizer.
  //
  // Raise what TTokenizer::Tokenize raises, and the library's base error: "Unexpected symbol '%s'",
  // "Expected symbol ')'", "Missing operator or semicolon". The instructions appended before the
  // fault stay.
  void CompileExpression(StringView AExpression, TCodeList& CodeList, const TStringList* Variables,
                         const TStringList* Functions);
  void CompileExpression(StringView AExpression, TCodeList& CodeList, TTokenizer& Tokenizer);
  // Compiles the tokens `From`..`Till` of `List`, from 0, into the code list of the last
  // compilation; none when `Till` is below `From`. Raises EListError "List index out of bounds
  // (%d)", the library's base error "Code list is missing" before the first compilation, and as
  // above.
  void GetTokenList(const TTokenList& List, std::int32_t From, std::int32_t Till);
  [[noreturn]] static void FatalError(StringView Msg);

 protected:
  // Appends the instructions of FInFix to FPostFix. False when parentheses were left over, which
  // only operators of the host's can bring about.
  bool ConvertInFixToPostFix();

  TTokenList FInFix;              // the tokens being compiled
  TCodeList* FPostFix = nullptr;  // the caller's
  TTokenList FStack;              // operators that wait for their operands

 private:
  class Converter;

  void Emit(const TSourceToken& Token);
  void PopOperator();
  bool CloseStack();
};

}  // namespace zentavo
