// The instructions that expressions are compiled to.
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "zentavo/framework/variant.h"

namespace zentavo {

// Operators of the language and opcodes of instructions. opAssignVar and opStop are made and run by
// nothing here; they are a host's to use.
enum TOperator : std::uint8_t {
  opNone,
  opString,         // pushes the constant
  opNumber,         // pushes the constant
  opStackVariable,  // pushes a slot of the value stack
  opVariable,       // pushes a variable of the host
  opFunction,       // the host pops the arguments, its result is pushed
  opEq,
  opNe,
  opGt,
  opGe,
  opLt,
  opLe,
  opAdd,
  opSubtract,
  opMultiply,
  opDivide,
  opMod,
  opDiv,
  opAnd,
  opOr,
  opNot,
  opNegative,
  opAssignVar,
  opStop,
};

// The names above, "opNone" and so on; empty for any other value.
ZENTAVO_API StringView OperatorName(TOperator Op);

class TInstruction {
 public:
  TInstruction() = default;
  TInstruction(TOperator Op, Variant Value, std::int32_t Index)
      : FOperator(Op), FIndex(Index), FValue(std::move(Value)) {}

  // The constant of opString and opNumber.
  const Variant& Value() const { return FValue; }
  void SetValue(Variant Value) { FValue = std::move(Value); }
  TOperator Operator() const { return FOperator; }
  void SetOperator(TOperator Value) { FOperator = Value; }
  // The host's identifier of the variable, stack variable or function.
  std::int32_t Index() const { return FIndex; }
  void SetIndex(std::int32_t Value) { FIndex = Value; }
  // A number and an operation code that are the host's alone.
  std::int32_t Param() const { return FParam; }
  void SetParam(std::int32_t Value) { FParam = Value; }
  std::uint8_t CustomOp() const { return FCustomOp; }
  void SetCustomOp(std::uint8_t Value) { FCustomOp = Value; }

 private:
  std::uint8_t FCustomOp = 0;
  TOperator FOperator = opNone;
  std::int32_t FIndex = 0;
  std::int32_t FParam = 0;
  Variant FValue;
};

using TCodeList = std::vector<TInstruction>;

}  // namespace zentavo
