// What a parser keeps from evaluation to evaluation, so that none allocates anew.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "zentavo/formula/arguments.h"
#include "zentavo/formula/debug_text.h"
#include "zentavo/formula/program.h"
#include "zentavo/formula/token.h"

namespace zentavo {

// Objects that are taken and given back in the order of a stack. Their addresses stay.
template <typename T>
class ObjectStack {
 public:
  T& Push() {
    if (count_ == objects_.size()) objects_.push_back(std::make_unique<T>());
    return *objects_[count_++];
  }
  void Pop() { --count_; }
  std::size_t Size() const { return count_; }
  void Truncate(std::size_t count) { count_ = count; }

 private:
  std::vector<std::unique_ptr<T>> objects_;
  std::size_t count_ = 0;
};

// A binary operator whose right operand is being read.
struct PendingOperator {
  TTokenTypes token;
  std::int32_t position;
  TResult* left;
};

// An expression that is being read: the whole one, one in parentheses, or an argument of a call.
struct OpenExpression {
  enum class Kind : std::uint8_t { kWhole, kParentheses, kArgument };
  Kind kind;
  TTokenTypes sign =
      tokNull;  // the unary operator before the factor that ends with this expression
  std::int32_t sign_position = 0;
  TResult* operand;                      // what is being read into
  std::size_t first_operator;            // its operators in EvaluationState::operators begin here
  const TIdentInfo* function = nullptr;  // kArgument: what is called
  TArguments* arguments = nullptr;
  TResult* call_result = nullptr;
  std::int32_t call_position = 0;
};

struct EvaluationState {
  DebugTrace trace;
  DebugTrace* active_trace = &trace;  // the one that the current run writes
  std::vector<OpenExpression> open;
  std::vector<PendingOperator> operators;
  ObjectStack<TResult> values;  // right-hand operands
  ObjectStack<TArguments> argument_lists;

  std::int32_t token_start = 0;    // where CToken begins
  double token_number = 0;         // the value of a number token
  std::int32_t call_position = 0;  // where the function being executed is named

  std::unique_ptr<FormulaProgram> program;  // of the current formula, once there is one
  // The same when it neither calls the host nor can fail and there are no hooks: nothing has to be
  // guarded or asked.
  FormulaProgram* plain_program = nullptr;
  FormulaRecorder* recorder = nullptr;  // while a run is being recorded
  std::uint32_t run_count = 0;          // runs of the current formula
  bool formula_changed = false;         // since the last run
  bool initialized = false;
  bool has_hooks = true;  // a descendant may have overridden something
  bool running = false;

  // Who follows the run; null when nobody does or it cannot be repeated any more.
  FormulaRecorder* Recorder() const {
    return recorder != nullptr && recorder->Repeatable() ? recorder : nullptr;
  }
};

}  // namespace zentavo
