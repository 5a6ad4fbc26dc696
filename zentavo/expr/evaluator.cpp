#include "zentavo/expr/evaluator.h"

#include <functional>
#include <utility>

#include "zentavo/foundation/errors.h"
#include "zentavo/framework/exception.h"
#include "zentavo/framework/format.h"
#include "zentavo/framework/variant_operators.h"

namespace zentavo {

namespace {

bool AreDoubles(const Variant& a, const Variant& b) {
  return a.Kind() == VariantKind::kDouble && b.Kind() == VariantKind::kDouble;
}

// Doubles, which all number literals are, compare and combine here as variants do.
template <typename Relation>
Variant Compared(const Relation& holds, const Variant& a, const Variant& b) {
  return AreDoubles(a, b) ? holds(a.DoubleValue(), b.DoubleValue()) : holds(a, b);
}

template <typename Operation>
Variant Calculated(const Operation& of, const Variant& a, const Variant& b) {
  return AreDoubles(a, b) ? Variant(of(a.DoubleValue(), b.DoubleValue())) : of(a, b);
}

constexpr bool IsBinary(TOperator op) {
  return op >= opEq && op <= opOr;
}

// Makes `a` the result of a binary operator.
void Combine(TOperator op, Variant& a, const Variant& b) {
  switch (op) {
    case opEq: a = Compared(std::equal_to<>(), a, b); break;
    case opNe: a = Compared(std::not_equal_to<>(), a, b); break;
    case opGt: a = Compared(std::greater<>(), a, b); break;
    case opGe: a = Compared(std::greater_equal<>(), a, b); break;
    case opLt: a = Compared(std::less<>(), a, b); break;
    case opLe: a = Compared(std::less_equal<>(), a, b); break;
    case opAdd: VarAddTo(a, b); break;
    case opSubtract: a = Calculated(std::minus<>(), a, b); break;
    // The right operand comes first; callers rely on it.
    case opMultiply: a = Calculated(std::multiplies<>(), b, a); break;
    case opDivide: a = a / b; break;
    case opMod: a = VarMod(a, b); break;
    case opDiv: a = VarDiv(a, b); break;
    case opAnd: a = VarAnd(a, b); break;
    case opOr: a = VarOr(a, b); break;
    default: break;
  }
}

}  // namespace

TExpressionEvaluator::TExpressionEvaluator() = default;
TExpressionEvaluator::~TExpressionEvaluator() = default;

void TExpressionEvaluator::RunPush(const Variant& Value) {
  NextSlot() = Value;
  ++VSP;
}

Variant TExpressionEvaluator::Evaluate() {
  Variant result = Variant::Null();
  if (FPostFix == nullptr || FPostFix->empty()) return result;
  try {
    VSP = 0;
    ExecInstructions(0, static_cast<std::int32_t>(FPostFix->size()) - 1);
    RunPop(result);
  } catch (...) {
    // Whatever the host raises, its callers look for Null.
    return Variant::Null();
  }
  return result;
}

void TExpressionEvaluator::ExecInstructions(std::int32_t From, std::int32_t Till) {
  for (std::int32_t index = From; index <= Till; ++index) {
    FPC = index;
    const TInstruction& instruction = Current();
    // Variables, the most frequent by far, take no part in the choice between the others.
    if (instruction.Operator() == opVariable) {
      PushVariable(instruction.Index());
    } else if (index < Till && TryCombineConstant(instruction)) {
      ++index;
    } else {
      Run(instruction.Operator(), instruction);
    }
  }
}

void TExpressionEvaluator::RunOperator(TOperator Op) {
  Run(Op, Current());
}

void TExpressionEvaluator::Run(TOperator Op, const TInstruction& Instruction) {
  if (IsBinary(Op)) return RunBinary(Op);
  switch (Op) {
    case opString:
    case opNumber: RunPush(Instruction.Value()); break;
    case opStackVariable: PushStackVariable(Instruction.Index()); break;
    case opVariable: PushVariable(Instruction.Index()); break;
    case opFunction: PushFunction(Instruction.Index()); break;
    case opNot: RunUnary(VarNot); break;
    case opNegative: RunUnary(std::negate<>()); break;
    default: break;
  }
}

const TInstruction& TExpressionEvaluator::Current() const {
  const bool valid =
      FPostFix != nullptr && FPC >= 0 && static_cast<std::size_t>(FPC) < FPostFix->size();
  if (!valid) throw EListError(Format(u"List index out of bounds (%d)", {FPC}));
  return (*FPostFix)[static_cast<std::size_t>(FPC)];
}

Variant& TExpressionEvaluator::NextSlot() {
  const bool free = VSP >= 0 && VSP < kExpressionStackSize;
  if (!free) ZentavoError(u"Expression stack overflow");
  return VStack[static_cast<std::size_t>(VSP)];
}

void TExpressionEvaluator::Push(Variant&& Value) {
  NextSlot() = std::move(Value);
  ++VSP;
}

void TExpressionEvaluator::PushVariable(std::int32_t Index) {
  Variant value;
  GetVariableValue(Index, value);
  Push(std::move(value));
}

void TExpressionEvaluator::PushFunction(std::int32_t Index) {
  Variant result;
  CallFunction(Index, result);
  Push(std::move(result));
}

void TExpressionEvaluator::PushStackVariable(std::int32_t Index) {
  const std::int64_t slot = std::int64_t{VBP} + Index;
  const bool valid = slot >= 0 && slot < kExpressionStackSize;
  if (!valid) throw ERangeError(u"Range check error");
  RunPush(VStack[static_cast<std::size_t>(slot)]);
}

// Works in the left operand's slot, where the result belongs. An operator that raises has popped
// its operands.
void TExpressionEvaluator::RunBinary(TOperator Op) {
  if (VSP < 2) return RunBinaryOnShortStack(Op);
  VSP -= 2;
  Variant* left = &VStack[static_cast<std::size_t>(VSP)];
  Combine(Op, left[0], left[1]);
  ++VSP;
}

void TExpressionEvaluator::RunBinaryOnShortStack(TOperator Op) {
  Variant right;
  Variant left;
  RunPop(right);
  RunPop(left);
  Combine(Op, left, right);
  Push(std::move(left));
}

// A constant that a binary operator follows becomes its right operand where it is. False when there
// is another instruction, or no room or left operand on the stack.
bool TExpressionEvaluator::TryCombineConstant(const TInstruction& Constant) {
  const bool constant = Constant.Operator() == opNumber || Constant.Operator() == opString;
  if (!constant || VSP < 1 || VSP >= kExpressionStackSize) return false;
  const auto next = static_cast<std::size_t>(FPC) + 1;
  if (next >= FPostFix->size() || !IsBinary((*FPostFix)[next].Operator())) return false;
  ++FPC;
  --VSP;
  Combine((*FPostFix)[next].Operator(), VStack[static_cast<std::size_t>(VSP)], Constant.Value());
  ++VSP;
  return true;
}

template <typename Operation>
void TExpressionEvaluator::RunUnary(const Operation& Of) {
  const Variant none = Variant::Null();
  const Variant& operand = VSP > 0 ? VStack[static_cast<std::size_t>(--VSP)] : none;
  Push(Of(operand));
}

}  // namespace zentavo
