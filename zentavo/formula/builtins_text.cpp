// Built-in functions on text and dates.
#include <algorithm>
#include <array>
#include <cmath>

#include "zentavo/formula/builtin_values.h"
#include "zentavo/formula/parser.h"
#include "zentavo/formula/result_values.h"
#include "zentavo/framework/date_time.h"
#include "zentavo/framework/number_text.h"
#include "zentavo/genlib/date_reading.h"
#include "zentavo/genlib/stock_formats.h"
#include "zentavo/textout/spell.h"

namespace zentavo {

namespace {

constexpr std::int32_t kMaxDecimals = 18;
constexpr std::size_t kMaxPadding = 33;

// The separators that FString's style number selects; 0 for no separator at all.
struct Separators {
  char16_t thousand;
  char16_t decimal;
};

Separators SeparatorsOf(std::int32_t style) {
  constexpr std::int32_t kSystemStyle = 1;
  switch (style) {
    case 2: return {u',', u'.'};
    case 3: return {u'.', u','};
    case 4: return {u',', u'\0'};
    case 5: return {u'.', u'\0'};
    default: break;
  }
  const TFormatSettings& settings =
      style == kSystemStyle ? ProcessFormatSettings() : FormatSettings();
  return {settings.ThousandSeparator, settings.DecimalSeparator};
}

std::int32_t OptionalInteger(const TArguments& args, std::int32_t index) {
  return index < args.Count() ? TruncatedInteger(args.Items(index)) : 0;
}

// Every '*' stands for the text's unit at its place; one at the pattern's end for all that follow.
bool MatchesMask(StringView text, StringView pattern) {
  if (pattern.size() > text.size()) return false;
  if (pattern.size() < text.size() && (pattern.empty() || pattern.back() != u'*')) return false;
  for (std::size_t index = 0; index < pattern.size(); ++index) {
    const char16_t unit = pattern[index];
    if (unit != u'*' && UpperUnit(unit) != UpperUnit(text[index])) return false;
  }
  return true;
}

bool IsGreek(StringView language) {
  static constexpr std::array<StringView, 6> kOthers = {u"BG", u"SR", u"EN", u"TR", u"RO", u"RU"};
  return std::ranges::none_of(kOthers,
                              [language](StringView other) { return SameText(other, language); });
}

}  // namespace

void TXParser::DateProc(TResult& Result, TArguments& Args) {
  CheckArguments(Args.Count() == 1, u"Date");
  Result.ResultType = resDate;
  Result.ResultNum = StringToDate(Args.Items(0).ResultStr);
}

void TXParser::DateToStrProc(TResult& Result, TArguments& Args) {
  CheckArguments(Args.Count() == 1, u"DateToStr");
  Result.ResultStr = DateToStr(Args.Items(0).ResultNum);
}

void TXParser::CurTimeProc(TResult& Result) {
  Result.ResultType = resString;
  Result.ResultStr = TimeToStr(Time());
}

void TXParser::StrTypeProc(TResult& Result, TArguments& Args) {
  CheckArguments(Args.Count() == 1, u"String");
  Result.ResultType = resString;
  Result.ResultStr = FloatToStr(Args.Items(0).ResultNum, StockFormatSettings());
}

void TXParser::FormatStringProc(TResult& Result, TArguments& Args) {
  CheckArguments(Args.Count() >= 1 && Args.Count() <= 4, u"FString");
  const auto width = static_cast<std::size_t>(std::max(OptionalInteger(Args, 1), 0));
  const std::int32_t decimals = std::clamp(OptionalInteger(Args, 2), 0, kMaxDecimals);
  const Separators separators = SeparatorsOf(OptionalInteger(Args, 3));
  const String digits = FloatToFixed(Args.Items(0).ResultNum, decimals, Grouping::kThousands,
                                     separators.decimal, separators.thousand);
  const std::size_t padding = width > digits.size() ? width - digits.size() : 0;
  Result.ResultType = resString;
  Result.ResultStr = String(std::min(padding, kMaxPadding), u' ') + digits;
}

void TXParser::NZStrTypeProc(TResult& Result, TArguments& Args) {
  CheckArguments(Args.Count() == 1 || Args.Count() == 2, u"NZString");
  const StringView pattern = Args.Count() == 2 ? StringView(Args.Items(1).ResultStr) : u"#,###";
  Result.ResultStr = FormatFloat(pattern, Args.Items(0).ResultNum);
}

void TXParser::MaskProc(TResult& Result, TArguments& Args) {
  CheckArguments(Args.Count() == 2, u"Mask");
  SetTruth(Result, MatchesMask(Args.Items(0).ResultStr, Args.Items(1).ResultStr));
}

void TXParser::InclProc(TResult& Result, TArguments& Args) {
  CheckArguments(Args.Count() == 2, u"Include");
  SetTruth(Result, Pos(Args.Items(0).ResultStr, Args.Items(1).ResultStr) > 0);
}

void TXParser::CopyProc(TResult& Result, TArguments& Args) {
  CheckArguments(Args.Count() == 3, u"Copy");
  Result.ResultStr = Copy(Args.Items(0).ResultStr, TruncatedInteger(Args.Items(1)),
                          TruncatedInteger(Args.Items(2)));
}

void TXParser::PosProc(TResult& Result, TArguments& Args) {
  CheckArguments(Args.Count() == 2, u"Pos");
  Result.ResultNum = Pos(Args.Items(0).ResultStr, Args.Items(1).ResultStr);
}

void TXParser::LengthProc(TResult& Result, TArguments& Args) {
  CheckArguments(Args.Count() == 1, u"Len");
  Result.ResultNum = static_cast<double>(Args.Items(0).ResultStr.size());
}

void TXParser::SpellProc(TResult& Result, TArguments& Args) {
  CheckArguments(Args.Count() >= 1 && Args.Count() <= 3, u"Spell");
  const StringView currency = Args.Count() >= 2 ? StringView(Args.Items(1).ResultStr) : u"";
  StringView language = Args.Count() == 3 ? StringView(Args.Items(2).ResultStr) : FLangExt;
  if (language.empty()) language = u"EL";
  Result.ResultStr = Spell(Args.Items(0).ResultNum, currency, language);
  // Invoices print Greek amounts in capitals; the final sigma has the same capital.
  if (IsGreek(language)) Result.ResultStr = AnsiUpperCase(Result.ResultStr);
}

void TXParser::FormatProc(TResult& Result, TArguments& Args) {
  CheckArguments(Args.Count() >= 2, u"Format");
  const StringView pattern = Args.Items(0).ResultStr;
  String text;
  std::int32_t next = 1;
  for (std::size_t at = 0; at < pattern.size(); ++at) {
    const char16_t type = at + 1 < pattern.size() ? pattern[at + 1] : u'\0';
    if (pattern[at] != u'%' || (type != u's' && type != u'd') || next >= Args.Count()) {
      text += pattern[at];
      continue;
    }
    const TResult& value = Args.Items(next++);
    text += type == u's' ? ResultText(value) : IntToStr(Round(value.ResultNum));
    ++at;
  }
  Result.ResultStr = text;
}

void TXParser::LTrimProc(TResult& Result, TArguments& Args) {
  CheckArguments(Args.Count() == 1, u"LTrim");
  Result.ResultStr = TrimLeft(Args.Items(0).ResultStr);
}

void TXParser::RTrimProc(TResult& Result, TArguments& Args) {
  CheckArguments(Args.Count() == 1, u"RTrim");
  Result.ResultStr = TrimRight(Args.Items(0).ResultStr);
}

void TXParser::ReplaceProc(TResult& Result, TArguments& Args) {
  CheckArguments(Args.Count() == 3, u"Replace");
  Result.ResultStr =
      ReplaceAll(Args.Items(0).ResultStr, Args.Items(1).ResultStr, Args.Items(2).ResultStr);
}

void TXParser::CharProc(TResult& Result, TArguments& Args) {
  CheckArguments(Args.Count() == 1, u"Char");
  Result.ResultStr.assign(1, static_cast<char16_t>(TruncatedInteger(Args.Items(0)) & 0xFFFF));
}

void TXParser::QuoteStrProc(TResult& Result, TArguments& Args) {
  CheckArguments(Args.Count() == 1, u"QuoteStr");
  Result.ResultStr = QuotedStr(Args.Items(0).ResultStr);
}

}  // namespace zentavo
