#include "zentavo/formula/program.h"

#include "zentavo/formula/evaluation_state.h"
#include "zentavo/formula/operators.h"
#include "zentavo/formula/parser.h"
#include "zentavo/formula/result_values.h"

namespace zentavo {

bool FormulaProgram::StillHolds(TXParser& parser, std::uint64_t table_version) const {
  if (!HasTables(table_version)) return false;
  if (!parser.state_->has_hooks) return true;
  for (const ResolvedName& name : names_) {
    parser.CToken.TokenType = tokIdentifier;
    parser.CToken.TokenValue = name.name;
    parser.CToken.TokenIdent = nullptr;
    parser.cptr = name.position;
    const TIdentInfo* ident = nullptr;
    if (parser.UserResolve() || !parser.SearchIdent(name.name, ident) || ident != name.ident) {
      return false;
    }
  }
  return true;
}

inline void FormulaProgram::ExecuteOnNumbers(const FormulaInstruction& step) {
  switch (step.op) {
    case FormulaOp::kAdd: *step.number_out = *step.left + *step.right; break;
    case FormulaOp::kSub: *step.number_out = *step.left - *step.right; break;
    case FormulaOp::kMul: *step.number_out = *step.left * *step.right; break;
    case FormulaOp::kDiv: *step.number_out = ApplyToNumbers(tokDiv, *step.left, *step.right); break;
    case FormulaOp::kOtherBinary:
      *step.number_out = ApplyToNumbers(step.token, *step.left, *step.right);
      break;
    case FormulaOp::kNegate: *step.number_out = -*step.left; break;
    case FormulaOp::kNot: *step.number_out = *step.left == 0 ? 1 : 0; break;
    case FormulaOp::kLarger:
      *step.number_out = *step.right > *step.left ? *step.right : *step.left;
      break;
    case FormulaOp::kSmaller:
      *step.number_out = *step.right < *step.left ? *step.right : *step.left;
      break;
    case FormulaOp::kSelect: {
      const bool holds = *step.left != 0;
      *step.number_out = holds ? *step.right : *step.third;
      trace_.SetAlias(step.node, holds ? step.right_node : step.third_node);
      break;
    }
    case FormulaOp::kFunction: *step.number_out = step.function(*step.left, *step.right); break;
    case FormulaOp::kLoadDouble: *step.number_out = *step.left; break;
    case FormulaOp::kLoadInteger:
      *step.number_out = *step.integer;
      trace_.SetNumber(step.node, *step.number_out);
      break;
    default: break;  // works on a result
  }
}

void FormulaProgram::ExecuteOnResult(TXParser& parser, const FormulaInstruction& step) {
  switch (step.op) {
    case FormulaOp::kMakeNumber:
      MakeFresh(*step.result);
      step.result->ResultType = resNumber;
      step.result->ResultNum = *step.left;
      trace_.Assign(step.result->DebugStr, step.node);
      break;
    case FormulaOp::kMakeText:
      MakeFresh(*step.result);
      step.result->ResultType = resString;
      step.result->ResultStr = *step.text;
      step.result->DebugStr = *step.text;
      break;
    case FormulaOp::kFresh: MakeFresh(*step.result); break;
    case FormulaOp::kVariable:
      MakeFresh(*step.result);
      parser.ResolveKnown(*step.result, *step.ident);
      break;
    case FormulaOp::kCall:
      MakeFresh(*step.result);
      step.result->ResultType = step.ident->IdentType;
      parser.state_->call_position = step.position;
      parser.ExecFunction(*step.result, *step.ident, *step.arguments);
      break;
    case FormulaOp::kApplyBinary:
      parser.ApplyBinary(step.token, *step.result, *step.other, step.position);
      break;
    case FormulaOp::kApplyUnary: parser.ApplyUnary(step.token, *step.result, step.position); break;
    case FormulaOp::kParenthesise:
      trace_.Assign(step.result->DebugStr,
                    trace_.AddParentheses(trace_.NodeOf(step.result->DebugStr)));
      break;
    default: break;  // works on numbers
  }
}

void FormulaProgram::RunSteps(TXParser& parser) {
  for (const FormulaInstruction& step : steps_) {
    if (step.result == nullptr) {
      ExecuteOnNumbers(step);
    } else {
      ExecuteOnResult(parser, step);
    }
  }
}

// Not inlined: a constant formula needs none of the registers that the steps take.
[[gnu::noinline]] void FormulaProgram::RunPlainSteps() {
  for (const FormulaInstruction& step : steps_) ExecuteOnNumbers(step);
}

inline void FormulaProgram::Deliver(TXParser& parser) {
  if (final_number_ != nullptr) {
    parser.CResult.ResultType = resNumber;
    parser.CResult.ResultNum = *final_number_;
    trace_.Assign(parser.CResult.DebugStr, final_node_);
  }
  parser.CToken.TokenType = last_token_.TokenType;
  if (last_token_.TokenType != tokNull) DeliverToken(parser);
}

// Apart, because a formula that ends where its text ends has none.
[[gnu::noinline]] void FormulaProgram::DeliverToken(TXParser& parser) const {
  parser.CToken = last_token_;
}

void FormulaProgram::Run(TXParser& parser) {
  trace_.ReturnTo(fixed_trace_);
  RunSteps(parser);
  Deliver(parser);
}

inline bool TXParser::RunPlainProgram() {
  FormulaProgram* program = state_->plain_program;
  if (program == nullptr || !program->HasTables(Idents.Version())) return false;
  if (!CResult.ResultStr.empty()) CResult.ResultStr.clear();
  if (!program->steps_.empty()) program->RunPlainSteps();
  program->Deliver(*this);
  return true;
}

// Here, so that a repeated formula is one call.
void TXParser::Execute() {
  if (!RunPlainProgram()) ExecuteGuarded();
}

}  // namespace zentavo
