#include "zentavo/formula/parser.h"

#include <limits>
#include <optional>
#include <typeinfo>
#include <utility>

#include "zentavo/formula/builtin_table.h"
#include "zentavo/formula/evaluation_state.h"
#include "zentavo/formula/result_values.h"

namespace zentavo {

TXParser::TXParser() : state_(std::make_unique<EvaluationState>()) {}
TXParser::~TXParser() = default;

void TXParser::UserInitialize() {}
void TXParser::EvaluateUserFunction(std::int32_t, TArguments&, TResult&) {}
void TXParser::EvaluateUserVariable(std::int32_t, TResult&) {}
bool TXParser::CanEvaluate(StringView, PResult, std::int32_t*) {
  return false;
}
void TXParser::ExecFieldFunction(TObject*, TResult&, TArguments&) {}
void TXParser::ExecCodeProcFunction(StringView, TResult&, TArguments&) {}
bool TXParser::UserResolve() {
  return false;
}

bool TXParser::SearchIdent(StringView Name, const TIdentInfo*& Info) {
  const std::uint32_t hash = TIdentList::Hash(Name);
  const TIdentInfo* found = ParserFunctions().Lookup(Name, hash);
  if (found == nullptr) found = Idents.Lookup(Name, hash);
  if (found == nullptr) return false;
  Info = found;
  return true;
}

void TXParser::ResolveFieldFunction(TObject* Field, TResult& Result) {
  TArguments arguments;
  GetFunctionArguments(arguments);
  ExecFieldFunction(Field, Result, arguments);
}

void TXParser::ResolveCodeProcFunction(StringView Name, TResult& Result) {
  const String name(Name);  // reading the arguments moves on from the token it may lie in
  TArguments arguments;
  GetFunctionArguments(arguments);
  ExecCodeProcFunction(name, Result, arguments);
}

void TXParser::DefineUserFunction(StringView FunctionName, std::int32_t FunctionId,
                                  TResultTypes FunctionType) {
  InsertIdent(FunctionName, tokUserFunction, FunctionId, FunctionType);
}

void TXParser::DefineUserVariable(StringView VariableName, std::int32_t VariableId,
                                  TResultTypes VariableType) {
  InsertIdent(VariableName, tokUserVariable, VariableId, VariableType);
}

void TXParser::InsertIdent(StringView Name, TTokenTypes TokenType, std::int32_t Id,
                           TResultTypes ResultType, void* Ptr) {
  InsertInList(Idents, Name, TokenType, Id, ResultType, Ptr);
}

void TXParser::RemoveIdent(StringView Name) {
  std::int32_t index;
  if (Idents.Find(Name, index)) Idents.Delete(index);
}

void TXParser::EnsureInitialized() {
  if (state_->initialized) return;
  state_->initialized = true;
  state_->has_hooks = typeid(*this) != typeid(TXParser);
  UserInitialize();
}

void TXParser::SetFormula(StringView Value) {
  EnsureInitialized();
  if (state_->running) throw EXParserError(u"Formula is being evaluated");
  if (Value.size() >= static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max())) {
    throw EXParserError(u"Formula too complex");
  }
  FFormula = Value;
  FBuffer.SetValue({});
  if (!Value.empty() && Value.front() != u'$') FBuffer.Add(u'$');
  state_->formula_changed = true;
  state_->plain_program = nullptr;
}

// One run: marks the parser as busy, and leaves nothing half-done behind when it fails.
class ExecuteScope {
 public:
  explicit ExecuteScope(TXParser& parser) : parser_(parser), state_(*parser.state_) {
    if (state_.running) throw EXParserError(u"Formula is being evaluated");
    state_.running = true;
  }
  ExecuteScope(const ExecuteScope&) = delete;
  ExecuteScope& operator=(const ExecuteScope&) = delete;
  ~ExecuteScope() {
    state_.running = false;
    state_.recorder = nullptr;
    if (succeeded_) return;
    parser_.FBuffer.SetValue({});
    state_.open.clear();
    state_.operators.clear();
    state_.values.Truncate(0);
    state_.argument_lists.Truncate(0);
  }
  void Succeeded() { succeeded_ = true; }

 private:
  TXParser& parser_;
  EvaluationState& state_;
  bool succeeded_ = false;
};

void TXParser::ExecuteGuarded() {
  EnsureInitialized();
  ExecuteScope scope(*this);
  ClearResult();
  if (state_->formula_changed) {
    state_->formula_changed = false;
    state_->run_count = 0;
    DropProgram();
  }
  ++state_->run_count;
  if (!RunProgram()) RunText();
  scope.Succeeded();
}

bool TXParser::RunProgram() {
  if (state_->program == nullptr) return false;
  if (!state_->program->StillHolds(*this, Idents.Version())) {
    DropProgram();
    state_->run_count = 1;
    return false;
  }
  state_->active_trace = &state_->program->Trace();
  state_->program->Run(*this);
  return true;
}

void TXParser::RunText() {
  constexpr std::uint32_t kRecordedRun = 2;
  std::optional<FormulaRecorder> recorder;
  if (state_->run_count == kRecordedRun) state_->recorder = &recorder.emplace();
  state_->trace.Reset();
  state_->active_trace = &state_->trace;
  flen = static_cast<std::int32_t>(FFormula.size());
  cptr = Compiled() ? 2 : 1;
  NextItem();
  if (CToken.TokenType != tokNull) ReadWholeExpression();
  if (FBuffer.Size() > 0) {
    FFormula = FBuffer.View();
    FBuffer.SetValue({});
  }
  if (recorder) KeepProgram(recorder->Finish(CResult, CToken, Idents.Version()));
}

void TXParser::KeepProgram(std::unique_ptr<FormulaProgram> program) {
  state_->program = std::move(program);
  const bool plain = state_->program != nullptr && state_->program->IsPlain();
  state_->plain_program = plain && !state_->has_hooks ? state_->program.get() : nullptr;
}

void TXParser::DropProgram() {
  KeepProgram(nullptr);
}

}  // namespace zentavo
