// Evaluation of business formulas such as IF(Qty>10, Price*0.9, Price).
//
//   double price = 20, qty = 12;
//   TXParser parser;
//   parser.InsertIdent(u"Price", tokPtrVariable, 0, resNumber, &price);
//   parser.InsertIdent(u"Qty", tokPtrVariable, 0, resNumber, &qty);
//   parser.SetFormula(u"IF(Qty>10, Price*0.9, Price)");
//   parser.Execute();
//   parser.CResult.ResultNum;  // 18
//
// The grammar, from the loosest binding to the tightest, every binary level associating to the
// left:
//
//   comparison   = < > <= >= <>
//   sum          + plus - | or Xor AndNot
//   product      * / & and
//   unary        - !                     one of them, before one factor
//   factor       ( comparison ), 12.5, 'text', %1, name, name(argument, ...)
//
// What follows a complete expression is ignored. The first run of a formula also rewrites it into
// its pre-compiled form, which begins with '$' and which Formula() then returns; a host may keep
// that text and set it again.
//
// Hosts derive from TXParser and override the virtual operations. A parser is used by one thread at
// a time; parsers of different threads are independent.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "zentavo/formula/arguments.h"
#include "zentavo/formula/error.h"
#include "zentavo/formula/identifiers.h"
#include "zentavo/formula/token.h"
#include "zentavo/foundation/str_builder.h"
#include "zentavo/framework/text.h"

namespace zentavo {

class FormulaProgram;
struct EvaluationState;

// Nesting of parentheses and function calls beyond this raises EXParserError "Formula too complex".
inline constexpr std::size_t kMaxFormulaNesting = 1000;

// Neither copied nor moved.
class ZENTAVO_API TXParser {
 public:
  TXParser();
  TXParser(const TXParser&) = delete;
  TXParser& operator=(const TXParser&) = delete;
  virtual ~TXParser();

  // Defines the host's identifiers. Called once, before the first formula is set or run.
  virtual void UserInitialize();
  // Evaluates a function defined with DefineUserFunction. `Result` holds the declared type.
  virtual void EvaluateUserFunction(std::int32_t FunctionId, TArguments& Args, TResult& Result);
  // Evaluates a variable defined with DefineUserVariable. `Result` holds the declared type.
  virtual void EvaluateUserVariable(std::int32_t VariableId, TResult& Result);
  // The last chance of an unknown name. With a null `Result`: whether the name is known; `*Data`
  // may be set to a cookie that the pre-compiled form keeps. With a result: fills it by the cookie.
  virtual bool CanEvaluate(StringView Name, PResult Result, std::int32_t* Data);
  // For descendants that bind functions to data-set fields or to named procedures.
  virtual void ExecFieldFunction(TObject* Field, TResult& Result, TArguments& Args);
  virtual void ExecCodeProcFunction(StringView Name, TResult& Result, TArguments& Args);
  // Asked first for every identifier that is read, which CToken holds. True when it set CToken
  // itself.
  virtual bool UserResolve();
  // Evaluates an identifier whose arguments were gathered already.
  virtual void ResolveIdent(const TIdentInfo& Info, TArguments& Args, TResult& Result);
  // Looks in ParserFunctions first, then in Idents: no host name shadows a built-in one.
  virtual bool SearchIdent(StringView Name, const TIdentInfo*& Info);

  // Gather the arguments at the current position and hand them to the hook of that name.
  void ResolveFieldFunction(TObject* Field, TResult& Result);
  void ResolveCodeProcFunction(StringView Name, TResult& Result);

  void DefineUserFunction(StringView FunctionName, std::int32_t FunctionId,
                          TResultTypes FunctionType);
  void DefineUserVariable(StringView VariableName, std::int32_t VariableId,
                          TResultTypes VariableType);
  // Adds any entry, for instance a tokPtrVariable whose `Ptr` is the host's storage, which must
  // outlive the entry. Of two entries of one name the first stays.
  void InsertIdent(StringView Name, TTokenTypes TokenType, std::int32_t Id, TResultTypes ResultType,
                   void* Ptr = nullptr);
  // Removes a host's entry; an unknown name is ignored.
  void RemoveIdent(StringView Name);
  static const TIdentList& ParserFunctions() { return zentavo::ParserFunctions(); }

  // The formula; after its first successful run, its pre-compiled form.
  const String& Formula() const { return FFormula; }
  // Raises EXParserError "Formula is being evaluated" from within a hook of this parser.
  void SetFormula(StringView Value);
  // Evaluates the formula into CResult. Raises EXParserError, and whatever the hooks raise; CResult
  // then holds what was computed so far and the formula stays uncompiled. An empty formula only
  // clears CResult; its type is left as it was.
  void Execute();

  // The arguments that %1, %2, ... read, lent by the host; null for none.
  TArguments* ParamsArgs() const { return FParamsArgs; }
  void SetParamsArgs(TArguments* Args) { FParamsArgs = Args; }
  // The language of Spell when the formula names none; empty for Greek.
  const String& LangExt() const { return FLangExt; }
  void SetLangExt(StringView Value) { FLangExt = Value; }

 protected:
  // A place in the pre-compiled buffer; 0 for none.
  using BufferPosition = std::size_t;

  // Where the last user function began in the pre-compiled buffer, so that a descendant can put a
  // constant in the place of its call with one of the two operations below.
  BufferPosition KeepPtr() const { return FKeepPtr; }
  // Write a constant at `BufPtr`, where the buffer then goes on. Do nothing when no formula is
  // being compiled or `BufPtr` is 0 or beyond the buffer.
  void ReplaceNumber(double Value, BufferPosition BufPtr);
  void ReplaceString(StringView Value, BufferPosition BufPtr);  // its first 65535 units

  // Reads the next token into CToken.
  void NextItem();
  // Evaluates one expression from CToken on, up to the first token that does not belong to it.
  void BooleanExpression(TResult& Result);
  // Gathers the arguments that stand behind the current token; none when no '(' follows. CToken is
  // the closing parenthesis then.
  void GetFunctionArguments(TArguments& Args);
  // Evaluates the identifier of the current token, its arguments included.
  void ResolveKnown(TResult& Result, const TIdentInfo& Info);
  void ExecFunction(TResult& Result, const TIdentInfo& Info, TArguments& Args);
  [[noreturn]] void ParserError(StringView Msg, StringView Name = {}) const;

  // The built-in functions, called by their numbers. `Result` holds the table's type.
  void MaxProc(TResult& Result, TArguments& Args);
  void MinProc(TResult& Result, TArguments& Args);
  void DateProc(TResult& Result, TArguments& Args);
  void StrTypeProc(TResult& Result, TArguments& Args);
  void FormatStringProc(TResult& Result, TArguments& Args);
  void NZStrTypeProc(TResult& Result, TArguments& Args);
  void NumTypeProc(TResult& Result, TArguments& Args);
  void IntTypeProc(TResult& Result, TArguments& Args);
  void MaskProc(TResult& Result, TArguments& Args);
  void InclProc(TResult& Result, TArguments& Args);
  void CopyProc(TResult& Result, TArguments& Args);
  void CaseProc(TResult& Result, TArguments& Args);
  void PosProc(TResult& Result, TArguments& Args);
  void CurTimeProc(TResult& Result);
  void IFProc(TResult& Result, TArguments& Args);
  void LengthProc(TResult& Result, TArguments& Args);
  void SpellProc(TResult& Result, TArguments& Args);
  void TruncProc(TResult& Result, TArguments& Args);
  void TruncUpProc(TResult& Result, TArguments& Args);
  void RoundProc(TResult& Result, TArguments& Args);
  void ARoundProc(TResult& Result, TArguments& Args);
  void DateToStrProc(TResult& Result, TArguments& Args);
  void CaseofProc(TResult& Result, TArguments& Args);
  void INLISTProc(TResult& Result, TArguments& Args);
  void INStrProc(TResult& Result, TArguments& Args);
  void PercentProc(TResult& Result, TArguments& Args);
  void DPercentProc(TResult& Result, TArguments& Args);
  void MarginProc(TResult& Result, TArguments& Args);
  void IsEmptyProc(TResult& Result, TArguments& Args);
  void FormatProc(TResult& Result, TArguments& Args);
  void LTrimProc(TResult& Result, TArguments& Args);
  void RTrimProc(TResult& Result, TArguments& Args);
  void ReplaceProc(TResult& Result, TArguments& Args);
  void CharProc(TResult& Result, TArguments& Args);
  void QuoteStrProc(TResult& Result, TArguments& Args);
  void AbsProc(TResult& Result, TArguments& Args);

 private:
  friend class ExpressionReader;
  friend class FormulaProgram;
  friend class ExecuteScope;

  // Scanner.
  char16_t UnitAt(std::int32_t position) const {
    return FFormula[static_cast<std::size_t>(position - 1)];
  }
  // The text has a zero behind its last unit, which no token takes: scanning stops there by itself.
  char16_t NextCh() {
    ++cptr;
    return cptr > flen ? u'\0' : UnitAt(cptr);
  }
  bool Compiled() const { return !FFormula.empty() && FFormula.front() == u'$'; }
  void ReadMarker(char16_t marker);
  void ReadParameter();
  void ReadOperator(TTokenTypes token);
  void ReadNumber();
  void SkipNumber();
  double NumberOfToken() const;
  void ReadIdentifier();
  void ReadString();
  void ClassifyIdentifier();
  void TakeTokenText();

  // Pre-compiled form.
  void SaveToken();
  const char16_t* CompiledUnits(std::size_t length);
  bool RewindBuffer(BufferPosition position);
  const TIdentInfo& CheckedIdent(std::uintptr_t address);

  // Evaluation.
  void EnsureInitialized();
  void ExecuteGuarded();
  void ClearResult() {
    CResult.ResultNum = 0;
    if (!CResult.ResultStr.empty()) CResult.ResultStr.clear();
    CResult.DebugStr.Clear();
  }
  // Runs a recording that neither calls the host nor can fail, of a parser without hooks: nothing
  // has to be guarded or asked. Returns false when there is none.
  bool RunPlainProgram();
  bool RunProgram();
  void KeepProgram(std::unique_ptr<FormulaProgram> program);
  void DropProgram();
  void RunText();
  void ReadWholeExpression();
  void ReadVariable(TResult& Result, const TIdentInfo& Info);
  void ReadPtrVariable(TResult& Result, const TIdentInfo& Info);
  void ReadParamArg(TResult& Result);
  void ApplyBinary(TTokenTypes Operator, TResult& Left, const TResult& Right,
                   std::int32_t Position);
  void ApplyUnary(TTokenTypes Operator, TResult& Result, std::int32_t Position);
  void CheckArguments(bool Right, StringView Function) const;
  [[noreturn]] static void RaiseAt(StringView Msg, std::int32_t Position, StringView Name = {});

  // In this order, which descendants and debuggers know.
  String FFormula;
  TArguments* FParamsArgs = nullptr;
  TIdentList Idents;
  std::int32_t flen = 0;  // length of the text being scanned
  std::int32_t cptr = 0;  // 1-based position of the current character
  TStrBuilder FBuffer;    // the pre-compiled form being written; empty when not compiling
  BufferPosition FKeepPtr = 0;
  String FLangExt;
  PResult fResultPtr = nullptr;

 public:
  TToken CToken;    // the current token
  TResult CResult;  // the value of the last Execute

 private:
  std::unique_ptr<EvaluationState> state_;
};

}  // namespace zentavo
