// Expressions cut into tokens whose identifiers are resolved.
//
//   'text'  #13          a string (the next quote ends it), the character of a code
//   12  12.5  12.        a number, always with '.', always a double
//   null                 Null, in any case
//   :NAME                the value of a parameter, a constant from here on
//   A.B_1                a word: a letter A-Z, a-z, then letters, digits, '_' and '.'
//   or and               level 2: operators bind the tighter the higher their level, all
//   = <> < <= > >= + -   level 3  associate to the left
//   / div mod            level 5
//   *                    level 6
//   not, - of one operand, functions: level 7
//   ( ) ,                level 1, 1, 0
//
// Words are looked up as stack variables first, then as functions, in lower case, then as
// variables, as written. Names are given by lists whose attached values are the host's identifiers;
// 0 means not declared. Hosts derive from TTokenizer where lists are not enough. A tokenizer is
// used by one thread at a time.
#pragma once

#include <cstdint>
#include <memory>

#include "zentavo/expr/source_token.h"
#include "zentavo/framework/string_list.h"
#include "zentavo/framework/text.h"
#include "zentavo/framework/variant.h"

namespace zentavo {

namespace script_scan {
class ArgumentCounter;
}

// Parentheses inside each other beyond this raise the library's base error "Parentheses nested too
// deeply".
inline constexpr std::int32_t kMaxParenthesisNesting = 1000;

// Neither copied nor moved.
class ZENTAVO_API TTokenizer {
 public:
  TTokenizer();
  TTokenizer(const TTokenizer&) = delete;
  TTokenizer& operator=(const TTokenizer&) = delete;
  virtual ~TTokenizer();

  // The identifier of a function, 0 for none; `Name` is in lower case. A `ParamCount` other than -1
  // makes the tokenizer check how many arguments follow.
  virtual std::int32_t GetFunctionId(StringView Name, std::int32_t& ParamCount);
  // Asked when IsStackVariable said yes: the slot, counted from the evaluator's VBP.
  virtual std::int32_t GetStackVariableId(StringView Name);
  virtual bool IsStackVariable(StringView Name);
  // The identifier of a variable, 0 for none.
  virtual std::int32_t GetVariableId(StringView Name);
  // The value of a parameter; Null here.
  virtual Variant GetParamValue(StringView Name);

  // Appends the tokens of `Source` to `List` and returns true. Either list of names may be null;
  // both must outlive the call. Raises the library's base error: "Unterminated string", "Undeclared
  // identifier '%s'", "To many parameters", "Not enough parameters", a text and " is not a valid
  // number", "Parentheses nested too deeply"; EConvertError and ERangeError for a character code;
  // EScriptException for an argument list without an end. The tokens before the fault stay.
  bool Tokenize(StringView Source, TTokenList& List, const TStringList* Variables,
                const TStringList* Functions);
  // Reads the next token into the current one. False when nothing but white space is left.
  bool GetToken();
  // The current token.
  TSourceToken CreateToken() const;
  // The position, from 1, behind the last token read; after an error, near its place.
  std::int32_t Position() const { return FPosition; }

  // Whether `Name` stays unclassified; no word does.
  static bool IsKeyWord(StringView Name);
  // Makes the current token the function `Name`, in lower case, if it is one.
  bool IsFunction(StringView Name, std::int32_t& ParamCount);
  [[noreturn]] static void FatalError(StringView Msg);

 protected:
  const String& Source() const { return FSource; }
  const TStringList* Variables() const { return FVariables; }
  const TStringList* Functions() const { return FFunctions; }

 private:
  void Start(StringView Source, const TStringList* Variables, const TStringList* Functions);
  void ClearToken();
  void SetToken(TTokenKind Kind, TOperator Operator, std::int32_t Level = 0);
  void SetText(std::int32_t From, std::int32_t To);
  template <typename Test>
  void SkipWhile(const Test& Belongs);
  void ReadString();
  void ReadCharacter();
  void ReadParameter();
  void ReadNumber();
  void ReadWord();
  bool ReadKeyword(StringView Lower);
  bool ReadFunction(StringView Lower);
  void ReadVariable();
  void ReadSymbol();
  void ReadRelation();
  void CheckArgumentCount(std::int32_t Expected);

  // In this order, which descendants and debuggers know.
  String FSource;
  const TStringList* FVariables = nullptr;
  const TStringList* FFunctions = nullptr;
  std::int32_t FPosition = 1;  // of the next character, from 1
  std::int32_t SrcLen = 0;

 protected:
  String FToken;
  TTokenKind FTokenKind = tkNone;
  Variant FTokenValue;
  std::int32_t FTokenIndex = 0;
  TOperator FTokenOperator = opNone;
  std::int32_t FTokenLevel = 0;

 private:
  std::unique_ptr<script_scan::ArgumentCounter> counter_;
};

}  // namespace zentavo
