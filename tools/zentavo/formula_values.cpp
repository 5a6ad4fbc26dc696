#include "tools/zentavo/formula_values.h"

#include <algorithm>

#include "tools/zentavo/command.h"
#include "zentavo/framework/date_time.h"
#include "zentavo/framework/format_settings.h"
#include "zentavo/framework/number_text.h"

namespace zentavo::tool {

namespace {

NamedValue SplitVariable(const std::string& argument) {
  NamedValue variable = SplitNamedValue(argument);
  const String name = FromUtf8(variable.name);
  if (!IsFreeIdentifier(name)) {
    throw UsageError(u"'" + Excerpt(name) + u"' cannot be the name of a variable");
  }
  return variable;
}

}  // namespace

String TypeName(TResultTypes type) {
  constexpr StringView kNames[] = {u"undefined", u"string", u"number", u"integer",
                                   u"date",      u"time",   u"variant"};
  return String(kNames[type]);
}

void AppendValue(AnsiString& out, const TResult& value) {
  switch (value.ResultType) {
    case resUndefined: break;
    case resString: AppendUtf8(out, value.ResultStr); break;
    case resDate: AppendUtf8(out, DateToStr(value.ResultNum, TFormatSettings())); break;
    case resTime: AppendUtf8(out, TimeToStr(value.ResultNum, TFormatSettings())); break;
    default: AppendFloat(out, value.ResultNum); break;
  }
}

AnsiString ValueText(const TResult& value) {
  AnsiString text;
  AppendValue(text, value);
  return text;
}

bool IsFreeIdentifier(StringView name) {
  if (name.empty() || !IsNameLetter(name.front())) return false;
  return std::all_of(
             name.begin(), name.end(),
             [](char16_t unit) { return IsNameLetter(unit) || IsDigit(unit) || unit == u'.'; }) &&
         TXParser::ParserFunctions().Lookup(name) == nullptr;
}

NamedValues::NamedValues(const std::vector<std::string>& numbers,
                         const std::vector<std::string>& texts) {
  for (const std::string& argument : numbers) {
    const NamedValue variable = SplitVariable(argument);
    numbers_.push_back({FromUtf8(variable.name), ReadNumberArgument(variable.value)});
  }
  for (const std::string& argument : texts) {
    const NamedValue variable = SplitVariable(argument);
    texts_.push_back({FromUtf8(variable.name), FromUtf8(variable.value)});
  }
}

void NamedValues::InsertInto(TXParser& parser) {
  for (auto& [name, value] : numbers_) {
    parser.InsertIdent(name, tokPtrVariable, 0, resNumber, &value);
  }
  for (auto& [name, value] : texts_) {
    parser.InsertIdent(name, tokPtrVariable, 0, resString, &value);
  }
}

bool NamedValues::Has(StringView name) const {
  const auto has_name = [name](const auto& variable) { return SameText(variable.name, name); };
  return std::any_of(numbers_.begin(), numbers_.end(), has_name) ||
         std::any_of(texts_.begin(), texts_.end(), has_name);
}

}  // namespace zentavo::tool
