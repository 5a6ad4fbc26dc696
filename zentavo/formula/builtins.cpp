// The dispatch of the built-in functions by number.
#include <array>

#include "zentavo/formula/builtin_table.h"
#include "zentavo/formula/evaluation_state.h"
#include "zentavo/formula/parser.h"

namespace zentavo {

void TXParser::CheckArguments(bool Right, StringView Function) const {
  if (Right) return;
  RaiseAt(String(Function) + u"() : Wrong number of arguments", state_->call_position, Function);
}

void TXParser::ExecFunction(TResult& Result, const TIdentInfo& Info, TArguments& Args) {
  using Procedure = void (TXParser::*)(TResult&, TArguments&);
  static constexpr std::array<Procedure, kLastBuiltinId + 1> kProcedures = {
      nullptr,
      &TXParser::IntTypeProc,  // 1
      &TXParser::NumTypeProc,
      &TXParser::PosProc,
      &TXParser::RoundProc,
      &TXParser::StrTypeProc,
      &TXParser::MaxProc,  // 6
      &TXParser::TruncProc,
      &TXParser::MinProc,
      &TXParser::LengthProc,
      &TXParser::DateToStrProc,
      &TXParser::DateProc,  // 11
      nullptr,              // the variable CurTime
      &TXParser::CopyProc,
      &TXParser::CaseProc,
      &TXParser::CaseofProc,
      &TXParser::IFProc,  // 16
      &TXParser::MaskProc,
      &TXParser::InclProc,
      &TXParser::SpellProc,
      &TXParser::NZStrTypeProc,
      &TXParser::INLISTProc,  // 21
      &TXParser::INStrProc,
      &TXParser::PercentProc,
      &TXParser::DPercentProc,
      &TXParser::MarginProc,
      &TXParser::IsEmptyProc,  // 26
      &TXParser::FormatProc,
      &TXParser::ARoundProc,
      &TXParser::TruncUpProc,
      &TXParser::LTrimProc,
      &TXParser::RTrimProc,  // 31
      &TXParser::ReplaceProc,
      &TXParser::CharProc,
      &TXParser::FormatStringProc,
      &TXParser::QuoteStrProc,
      &TXParser::AbsProc,  // 36
  };
  if (Info.IdentToken == tokUserFunction) {
    EvaluateUserFunction(Info.IdentId, Args, Result);
  } else if (Info.IdentId > 0 && Info.IdentId <= kLastBuiltinId) {
    const Procedure procedure = kProcedures[static_cast<std::size_t>(Info.IdentId)];
    if (procedure != nullptr) (this->*procedure)(Result, Args);
  }
}

}  // namespace zentavo
