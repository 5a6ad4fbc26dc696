// A formula as instructions: what a run resolved, ready to be repeated.
//
// From its second run on a formula is recorded while it is evaluated from its text, and later runs
// execute the recording. Numbers whose type is certain live in plain doubles; everything else goes
// through the same operations as evaluation from text does. A recording holds while the tables and
// the answers of the host's hooks are what they were.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <vector>

#include "zentavo/formula/arguments.h"
#include "zentavo/formula/builtin_numbers.h"
#include "zentavo/formula/debug_text.h"
#include "zentavo/formula/identifiers.h"
#include "zentavo/formula/token.h"

namespace zentavo {

class TXParser;

enum class FormulaOp : std::uint8_t {
  // *number_out from *left, *right
  kAdd,
  kSub,
  kMul,
  kDiv,
  kOtherBinary,  // by token
  kNegate,
  kNot,
  kLarger,
  kSmaller,
  kSelect,    // *left is not 0 ? *right : *third; a trace node stands for the one chosen
  kFunction,  // of *left and *right
  kLoadDouble,
  kLoadInteger,  // from an std::int32_t; sets the number of a trace node
  // *result
  kMakeNumber,  // from *left
  kMakeText,
  kFresh,
  kVariable,
  kCall,
  kApplyBinary,  // with *other
  kApplyUnary,
  kParenthesise,
};

struct FormulaInstruction {
  FormulaOp op;
  TTokenTypes token = tokNull;
  std::int32_t position = 0;    // in the formula's text, for errors
  DebugTrace::NodeId node = 0;  // of the value's debug text
  double* number_out = nullptr;
  const double* left = nullptr;
  const double* right = nullptr;
  const double* third = nullptr;
  DebugTrace::NodeId right_node = 0;
  DebugTrace::NodeId third_node = 0;
  NumberFunction function = nullptr;
  const std::int32_t* integer = nullptr;
  TResult* result = nullptr;
  TResult* other = nullptr;
  const String* text = nullptr;
  const TIdentInfo* ident = nullptr;
  TArguments* arguments = nullptr;
};

class FormulaProgram {
 public:
  // Executes into parser.CResult, which has been cleared. The parser's debug trace is this
  // program's until the next run.
  void Run(TXParser& parser);

  // Whether the tables and the hooks still answer as they did.
  bool StillHolds(TXParser& parser, std::uint64_t table_version) const;

  bool HasTables(std::uint64_t table_version) const { return table_version == table_version_; }
  // Whether it neither calls the host nor raises.
  bool IsPlain() const { return is_plain_; }

  DebugTrace& Trace() { return trace_; }

 private:
  friend class FormulaRecorder;
  friend class TXParser;

  // What the host answered when it was asked for a name.
  struct ResolvedName {
    String name;
    std::int32_t position;  // behind the name
    const TIdentInfo* ident;
  };

  void ExecuteOnNumbers(const FormulaInstruction& step);
  void ExecuteOnResult(TXParser& parser, const FormulaInstruction& step);
  void RunSteps(TXParser& parser);
  void RunPlainSteps();
  void Deliver(TXParser& parser);
  void DeliverToken(TXParser& parser) const;

  std::vector<FormulaInstruction> steps_;
  // Addresses stay, because the instructions hold them.
  std::deque<double> numbers_;
  std::deque<TResult> results_;
  std::deque<String> texts_;
  std::deque<TArguments> argument_lists_;
  DebugTrace trace_;
  DebugTrace::Mark fixed_trace_;          // what every run has
  const double* final_number_ = nullptr;  // the value when it is a plain number, else in CResult
  DebugTrace::NodeId final_node_ = 0;

  TToken last_token_;
  std::vector<ResolvedName> names_;
  std::uint64_t table_version_ = 0;
  bool is_plain_ = false;
};

// Follows one evaluation, step by step, and makes a program of it.
class FormulaRecorder {
 public:
  FormulaRecorder();
  FormulaRecorder(const FormulaRecorder&) = delete;
  FormulaRecorder& operator=(const FormulaRecorder&) = delete;

  // An identifier was read, up to before `position`. A null `ident`, a hook's own token, cannot be
  // repeated.
  void Name(StringView name, std::int32_t position, const TIdentInfo* ident);
  // From then on nothing more is to be recorded.
  void NotRepeatable() { repeatable_ = false; }
  bool Repeatable() const { return repeatable_; }

  // Each gives one operand, or works on the last one or two.
  void Number(double value);
  void Text(StringView value);
  void Nothing();
  void Identifier(const TIdentInfo& ident, std::int32_t position);
  void Parentheses();
  void Unary(TTokenTypes token, std::int32_t position);
  void Binary(TTokenTypes token, std::int32_t position);
  void Call(const TIdentInfo& function, std::int32_t argument_count, std::int32_t position);

  // Returns the program, null when the evaluation cannot be repeated or is too long for it to pay.
  // `result` is where its value went, `last` the token behind the expression, `version` that of the
  // parser's own table.
  std::unique_ptr<FormulaProgram> Finish(TResult& result, const TToken& last,
                                         std::uint64_t version);

 private:
  // A value: a plain number, or a result.
  struct Operand {
    const double* number = nullptr;
    TResult* result = nullptr;
    DebugTrace::NodeId node = 0;  // of a plain number
    bool constant = false;        // a plain number that no run changes
  };

  FormulaInstruction& Emit(FormulaOp op);
  double* NewNumber(double value = 0) { return &program_->numbers_.emplace_back(value); }
  TResult* NewResult() { return &program_->results_.emplace_back(); }
  void PushNumber(const double* number, DebugTrace::NodeId node, bool constant = false);
  TResult* PushResult(FormulaOp op);
  TResult* AsResult(Operand& operand);
  void PointerVariable(const TIdentInfo& ident);
  bool PlainCall(std::int32_t id, std::size_t first);
  void LargestOrSmallest(FormulaOp op, std::size_t first);
  void Select(std::size_t first);
  void UseVariablesInPlace();

  std::unique_ptr<FormulaProgram> program_;
  std::vector<Operand> operands_;
  bool repeatable_ = true;
  bool calls_host_ = false;  // so that the order of reading variables can be seen
};

}  // namespace zentavo
