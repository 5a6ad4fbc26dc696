#include <algorithm>
#include <limits>
#include <map>

#include "zentavo/formula/builtin_table.h"
#include "zentavo/formula/operators.h"
#include "zentavo/formula/parser.h"
#include "zentavo/formula/program.h"

namespace zentavo {

namespace {

// Longer formulas are evaluated from their text each time.
constexpr std::size_t kMaxSteps = 4096;

FormulaOp NumberOp(TTokenTypes token) {
  switch (token) {
    case tokAdd: return FormulaOp::kAdd;
    case tokSub: return FormulaOp::kSub;
    case tokMul: return FormulaOp::kMul;
    case tokDiv: return FormulaOp::kDiv;
    default: return FormulaOp::kOtherBinary;
  }
}

}  // namespace

FormulaRecorder::FormulaRecorder() : program_(std::make_unique<FormulaProgram>()) {}

void FormulaRecorder::Name(StringView name, std::int32_t position, const TIdentInfo* ident) {
  if (ident == nullptr) NotRepeatable();
  if (repeatable_) program_->names_.push_back({String(name), position, ident});
}

FormulaInstruction& FormulaRecorder::Emit(FormulaOp op) {
  if (program_->steps_.size() > kMaxSteps) NotRepeatable();
  return program_->steps_.emplace_back(FormulaInstruction{op});
}

void FormulaRecorder::PushNumber(const double* number, DebugTrace::NodeId node, bool constant) {
  operands_.push_back({number, nullptr, node, constant});
}

TResult* FormulaRecorder::PushResult(FormulaOp op) {
  TResult* result = NewResult();
  Emit(op).result = result;
  operands_.push_back({nullptr, result, DebugTrace::kEmpty});
  return result;
}

TResult* FormulaRecorder::AsResult(Operand& operand) {
  if (operand.result == nullptr) {
    operand.result = NewResult();
    FormulaInstruction& step = Emit(FormulaOp::kMakeNumber);
    step.left = operand.number;
    step.node = operand.node;
    step.result = operand.result;
    operand.number = nullptr;
  }
  return operand.result;
}

void FormulaRecorder::Number(double value) {
  PushNumber(NewNumber(value), program_->trace_.AddNumber(value), true);
}

void FormulaRecorder::Text(StringView value) {
  PushResult(FormulaOp::kMakeText);
  program_->steps_.back().text = &program_->texts_.emplace_back(value);
}

void FormulaRecorder::Nothing() {
  PushResult(FormulaOp::kFresh);
}

void FormulaRecorder::Identifier(const TIdentInfo& ident, std::int32_t position) {
  const bool plain_number = ident.IdentType == resNumber || ident.IdentType == resInteger;
  if (ident.IdentToken == tokPtrVariable && plain_number) {
    PointerVariable(ident);
    return;
  }
  if (ident.IdentToken == tokSysFunction || ident.IdentToken == tokUserFunction) {
    Call(ident, 0, position);
    return;
  }
  if (ident.IdentToken == tokUserVariable) calls_host_ = true;
  PushResult(FormulaOp::kVariable);
  program_->steps_.back().ident = &ident;
}

// A number variable has no debug text, an integer one has its value as text.
void FormulaRecorder::PointerVariable(const TIdentInfo& ident) {
  double* number = NewNumber();
  if (ident.IdentType == resNumber) {
    FormulaInstruction& step = Emit(FormulaOp::kLoadDouble);
    step.left = static_cast<const double*>(ident.IdentPtr);
    step.number_out = number;
    PushNumber(number, DebugTrace::kEmpty);
    return;
  }
  const DebugTrace::NodeId node = program_->trace_.AddNumber(0);
  FormulaInstruction& step = Emit(FormulaOp::kLoadInteger);
  step.integer = static_cast<const std::int32_t*>(ident.IdentPtr);
  step.number_out = number;
  step.node = node;
  PushNumber(number, node);
}

void FormulaRecorder::Parentheses() {
  Operand& operand = operands_.back();
  if (operand.result != nullptr) {
    Emit(FormulaOp::kParenthesise).result = operand.result;
  } else {
    operand.node = program_->trace_.AddParentheses(operand.node);
  }
}

void FormulaRecorder::Unary(TTokenTypes token, std::int32_t position) {
  Operand& operand = operands_.back();
  if (operand.result != nullptr) {
    FormulaInstruction& step = Emit(FormulaOp::kApplyUnary);
    step.token = token;
    step.position = position;
    step.result = operand.result;
    return;
  }
  FormulaInstruction& step = Emit(token == tokSub ? FormulaOp::kNegate : FormulaOp::kNot);
  step.left = operand.number;
  step.number_out = NewNumber();
  operand.number = step.number_out;
  operand.constant = false;
  if (token == tokSub) operand.node = program_->trace_.AddNegation(operand.node);
}

void FormulaRecorder::Binary(TTokenTypes token, std::int32_t position) {
  Operand right = operands_.back();
  operands_.pop_back();
  Operand& left = operands_.back();
  if (left.result == nullptr && right.result == nullptr) {
    if (const char* text = OperatorDebugText(token)) {
      left.node = program_->trace_.AddBinary(left.node, text, right.node);
    }
    if (left.constant && right.constant) {
      left.number = NewNumber(ApplyToNumbers(token, *left.number, *right.number));
      return;
    }
    left.constant = false;
    FormulaInstruction& step = Emit(NumberOp(token));
    step.token = token;
    step.left = left.number;
    step.right = right.number;
    step.number_out = NewNumber();
    left.number = step.number_out;
    return;
  }
  TResult* left_result = AsResult(left);
  TResult* right_result = AsResult(right);
  FormulaInstruction& step = Emit(FormulaOp::kApplyBinary);
  step.token = token;
  step.position = position;
  step.result = left_result;
  step.other = right_result;
}

// A built-in function of plain numbers, with the operands from `first` on. False when it is none.
bool FormulaRecorder::PlainCall(std::int32_t id, std::size_t first) {
  const auto count = static_cast<std::int32_t>(operands_.size() - first);
  const bool plain =
      std::all_of(operands_.begin() + static_cast<std::ptrdiff_t>(first), operands_.end(),
                  [](const Operand& operand) { return operand.result == nullptr; });
  if (!plain || count == 0) return false;
  if (id == kMaxId || id == kMinId) {
    LargestOrSmallest(id == kMaxId ? FormulaOp::kLarger : FormulaOp::kSmaller, first);
    return true;
  }
  if (id == kIfId && count == 3) {
    Select(first);
    return true;
  }
  double second = 0;
  const NumberFunction function = NumberFunctionOf(id, count, &second);
  if (function == nullptr) return false;
  FormulaInstruction& step = Emit(FormulaOp::kFunction);
  step.function = function;
  step.left = operands_[first].number;
  step.right = count > 1 ? operands_[first + 1].number : NewNumber(second);
  step.number_out = NewNumber();
  operands_.resize(first);
  PushNumber(step.number_out, DebugTrace::kEmpty);
  return true;
}

void FormulaRecorder::LargestOrSmallest(FormulaOp op, std::size_t first) {
  const double* best = operands_[first].number;
  for (std::size_t index = first + 1; index < operands_.size(); ++index) {
    FormulaInstruction& step = Emit(op);
    step.left = best;
    step.right = operands_[index].number;
    step.number_out = NewNumber();
    best = step.number_out;
  }
  operands_.resize(first);
  PushNumber(best, DebugTrace::kEmpty);
}

void FormulaRecorder::Select(std::size_t first) {
  FormulaInstruction& step = Emit(FormulaOp::kSelect);
  step.left = operands_[first].number;
  step.right = operands_[first + 1].number;
  step.third = operands_[first + 2].number;
  step.right_node = operands_[first + 1].node;
  step.third_node = operands_[first + 2].node;
  step.node = program_->trace_.AddAlias();
  step.number_out = NewNumber();
  operands_.resize(first);
  PushNumber(step.number_out, step.node);
}

void FormulaRecorder::Call(const TIdentInfo& function, std::int32_t argument_count,
                           std::int32_t position) {
  const std::size_t first = operands_.size() - static_cast<std::size_t>(argument_count);
  if (function.IdentToken == tokUserFunction) {
    calls_host_ = true;
  } else if (PlainCall(function.IdentId, first)) {
    return;
  }
  TArguments& arguments = program_->argument_lists_.emplace_back();
  for (std::size_t index = first; index < operands_.size(); ++index) {
    // The argument's place is in the list itself: everything that was recorded into its result goes
    // there.
    TResult* recorded = AsResult(operands_[index]);
    TResult* place = &arguments.AddNew();
    for (FormulaInstruction& step : program_->steps_) {
      if (step.result == recorded) step.result = place;
      if (step.other == recorded) step.other = place;
    }
  }
  operands_.resize(first);
  PushResult(FormulaOp::kCall);
  program_->steps_.back().ident = &function;
  program_->steps_.back().arguments = &arguments;
  program_->steps_.back().position = position;
}

// Where nothing can change a variable between its reading and its use, its storage is used
// directly.
void FormulaRecorder::UseVariablesInPlace() {
  std::map<const double*, const double*> sources;
  for (const FormulaInstruction& step : program_->steps_) {
    if (step.op == FormulaOp::kLoadDouble) sources[step.number_out] = step.left;
  }
  const auto in_place = [&sources](const double*& number) {
    const auto found = sources.find(number);
    if (found != sources.end()) number = found->second;
  };
  std::erase_if(program_->steps_,
                [](const FormulaInstruction& step) { return step.op == FormulaOp::kLoadDouble; });
  for (FormulaInstruction& step : program_->steps_) {
    in_place(step.left);
    in_place(step.right);
    in_place(step.third);
  }
  in_place(operands_.back().number);
}

std::unique_ptr<FormulaProgram> FormulaRecorder::Finish(TResult& result, const TToken& last,
                                                        std::uint64_t version) {
  if (!repeatable_ || operands_.size() != 1) return nullptr;
  if (!calls_host_) UseVariablesInPlace();
  const Operand& value = operands_.back();
  program_->final_number_ = value.number;
  program_->final_node_ = value.node;
  for (FormulaInstruction& step : program_->steps_) {
    if (value.result != nullptr && step.result == value.result) step.result = &result;
  }
  // The result has been cleared before a run, which leaves its type as it was.
  std::erase_if(program_->steps_, [&result](const FormulaInstruction& step) {
    return step.op == FormulaOp::kFresh && step.result == &result;
  });
  program_->fixed_trace_ = program_->trace_.Position();
  program_->is_plain_ =
      std::all_of(program_->steps_.begin(), program_->steps_.end(),
                  [](const FormulaInstruction& step) { return step.result == nullptr; });
  program_->last_token_ = last;
  program_->table_version_ = version;
  return std::move(program_);
}

}  // namespace zentavo
