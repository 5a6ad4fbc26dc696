// Evaluation of compiled expressions over a host's variables and functions.
//
//   class Host : public TExpressionEvaluator {
//     void CallFunction(std::int32_t FunctionId, Variant& Result) override {  // twice(x)
//       Variant x;
//       RunPop(x);
//       Result = x + x;
//     }
//     void GetVariableValue(std::int32_t VariableId, Variant& Value) override { Value = price_; }
//     ...
//   };
//   host.SetPostFix(&code);
//   Variant value = host.Evaluate();
//
// Values combine by the rules of variant_operators.h. An operator takes Null for an operand that is
// not there. An evaluator is used by one thread at a time; several may share one code list, which
// they only read.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "zentavo/expr/instruction.h"
#include "zentavo/framework/variant.h"

namespace zentavo {

inline constexpr std::int32_t kExpressionStackSize = 201;  // values

// Neither copied nor moved.
class ZENTAVO_API TExpressionEvaluator {
 public:
  TExpressionEvaluator();
  TExpressionEvaluator(const TExpressionEvaluator&) = delete;
  TExpressionEvaluator& operator=(const TExpressionEvaluator&) = delete;
  virtual ~TExpressionEvaluator();

  // Pops the function's arguments with RunPop, the last one first, and gives its result. `Result`
  // and `Value` come Empty.
  virtual void CallFunction(std::int32_t FunctionId, Variant& Result) = 0;
  virtual void GetVariableValue(std::int32_t VariableId, Variant& Value) = 0;

  // The code list to run, the caller's; it must stay alive and as it is while instructions run.
  const TCodeList* PostFix() const { return FPostFix; }
  void SetPostFix(const TCodeList* CodeList) { FPostFix = CodeList; }

  // Null when the stack is empty.
  void RunPop(Variant& Value) {
    if (VSP > 0) {
      Value = VStack[static_cast<std::size_t>(--VSP)];
    } else {
      Value = Variant::Null();
    }
  }
  // Raises the library's base error "Expression stack overflow" beyond kExpressionStackSize values.
  void RunPush(const Variant& Value);

  // The value on top of the stack after all instructions; Null when there is none, and when an
  // instruction raises anything: callers test for Null, no error leaves here. Starts from an empty
  // stack; the slots above it stay as they are. No allocation while all values are numbers,
  // booleans and short texts.
  Variant Evaluate();
  // Runs the instructions `From`..`Till`, from 0, on the stack as it is. Raises EListError "List
  // index out of bounds (%d)", ERangeError "Range check error" for a stack variable outside the
  // stack, and what the operators and the host raise.
  void ExecInstructions(std::int32_t From, std::int32_t Till);
  // Runs the instruction at FPC as one of opcode `Op`; does nothing for one that has no action.
  // Raises as ExecInstructions does.
  void RunOperator(TOperator Op);

 protected:
  std::array<Variant, kExpressionStackSize> VStack;
  std::int32_t VSP = 0;  // how many values the stack holds
  std::int32_t VBP = 0;  // stack variable n is VStack[VBP + n]
  std::int32_t FPC = 0;  // the instruction that runs
  const TCodeList* FPostFix = nullptr;

 private:
  const TInstruction& Current() const;
  void Run(TOperator Op, const TInstruction& Instruction);
  Variant& NextSlot();
  void Push(Variant&& Value);
  void PushVariable(std::int32_t Index);
  void PushFunction(std::int32_t Index);
  void PushStackVariable(std::int32_t Index);
  void RunBinary(TOperator Op);
  void RunBinaryOnShortStack(TOperator Op);
  bool TryCombineConstant(const TInstruction& Constant);
  template <typename Operation>
  void RunUnary(const Operation& Of);
};

}  // namespace zentavo
