#include <algorithm>
#include <array>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "tools/zentavo/command.h"
#include "tools/zentavo/files.h"
#include "zentavo/expr/evaluator.h"
#include "zentavo/expr/expression.h"
#include "zentavo/expr/parse_lib.h"
#include "zentavo/expr/tokenizer.h"
#include "zentavo/framework/number_text.h"
#include "zentavo/framework/text.h"
#include "zentavo/framework/variant_convert.h"
#include "zentavo/framework/variant_operators.h"

namespace zentavo::tool {

namespace {

struct ExprOptions {
  std::string text;
  std::vector<std::string> numbers;
  std::vector<std::string> texts;
  bool postfix = false;
};

struct HostFunction {
  StringView name;
  std::int32_t parameters;
};
// A function's identifier is its place here, from 1.
constexpr std::array<HostFunction, 4> kFunctions = {
    {{u"min", 2}, {u"max", 2}, {u"len", 1}, {u"upper", 1}}};
enum FunctionIds : std::int32_t { kMin = 1, kMax, kLen, kUpper };

// The value as text, numbers with '.' whatever the locale.
String ValueText(const Variant& value) {
  if (value.IsNull()) return u"Null";
  if (value.Kind() != VariantKind::kDouble) return VarToStr(value);
  String text;
  AppendFloat(text, value.DoubleValue());
  return text;
}

// The names of the command line and of the host functions, and the variables' values.
class Names : public TTokenizer {
 public:
  void Declare(StringView name, Variant value) {
    if (!IsFree(name)) {
      throw UsageError(u"'" + Excerpt(name) + u"' cannot be the name of a variable");
    }
    values_.push_back(std::move(value));
    names_.AddValue(name, values_.size());
  }
  const Variant& Value(std::int32_t id) const { return values_[static_cast<std::size_t>(id - 1)]; }

  std::int32_t GetFunctionId(StringView name, std::int32_t& count) override {
    for (std::size_t index = 0; index < kFunctions.size(); ++index) {
      if (kFunctions[index].name != name) continue;
      count = kFunctions[index].parameters;
      return static_cast<std::int32_t>(index) + 1;
    }
    return 0;
  }
  std::int32_t GetVariableId(StringView name) override {
    const std::int32_t index = names_.IndexOf(name);
    return index < 0 ? 0 : static_cast<std::int32_t>(names_.Value(index));
  }

 private:
  // Whether `name` is one word that means nothing else.
  static bool IsFree(StringView name) {
    const bool word = !name.empty() && IsAlpha(name.front()) && name.front() != u'_' &&
                      std::all_of(name.begin(), name.end(),
                                  [](char16_t unit) { return IsToken(unit) || unit == u'.'; });
    const auto same = [name](StringView other) { return SameText(name, other); };
    constexpr StringView kKeywords[] = {u"null", u"or", u"and", u"not", u"mod", u"div"};
    return word && std::none_of(std::begin(kKeywords), std::end(kKeywords), same) &&
           std::none_of(kFunctions.begin(), kFunctions.end(),
                        [&](const HostFunction& function) { return same(function.name); });
  }

  TStringList names_;
  std::vector<Variant> values_;
};

class Host : public TExpressionEvaluator {
 public:
  explicit Host(const Names& names) : names_(names) {}

  void GetVariableValue(std::int32_t id, Variant& value) override { value = names_.Value(id); }
  // Every function of Null is Null.
  void CallFunction(std::int32_t id, Variant& result) override {
    Variant last;
    RunPop(last);
    if (id == kMin || id == kMax) {
      RunPop(result);
      if (last.IsNull() || (!result.IsNull() && (id == kMin ? last < result : last > result))) {
        result = std::move(last);
      }
    } else if (last.IsNull()) {
      result = std::move(last);
    } else if (id == kLen) {
      result = static_cast<std::int32_t>(ValueText(last).size());
    } else {
      result = Variant(AnsiUpperCase(ValueText(last)));
    }
  }

 private:
  const Names& names_;
};

String InstructionText(const TInstruction& instruction) {
  String line(OperatorName(instruction.Operator()));
  switch (instruction.Operator()) {
    case opString:
    case opNumber: {
      const String value = ValueText(instruction.Value());
      return line + u" " + (instruction.Value().IsString() ? u"'" + value + u"'" : value);
    }
    case opStackVariable:
    case opVariable:
    case opFunction: return line + u" " + IntToStr(instruction.Index());
    default: return line;
  }
}

void DeclareVariables(const ExprOptions& options, Names& names) {
  for (const std::string& argument : options.numbers) {
    const NamedValue variable = SplitNamedValue(argument);
    names.Declare(FromUtf8(variable.name), ReadNumberArgument(variable.value));
  }
  for (const std::string& argument : options.texts) {
    const NamedValue variable = SplitNamedValue(argument);
    names.Declare(FromUtf8(variable.name), FromUtf8(variable.value));
  }
}

String Shown(const TCodeList& code) {
  String lines;
  for (const TInstruction& instruction : code) lines += InstructionText(instruction) + u"\n";
  return lines;
}

void RunExpression(const ExprOptions& options) {
  Names names;
  DeclareVariables(options, names);
  TCodeList code;
  TExpression().CompileExpression(FromUtf8(options.text), code, names);
  Host host(names);
  host.SetPostFix(&code);
  PrintText(options.postfix ? Shown(code) : ValueText(host.Evaluate()));
}

}  // namespace

void AddExprCommand(CLI::App& program) {
  auto options = std::make_shared<ExprOptions>();
  CLI::App& command = *program.add_subcommand("expr", "Evaluate a script expression");
  command.add_option("TEXT", options->text, "The expression")->required();
  AddRepeated(command, "-n,--number", options->numbers, "NAME=NUMBER: a variable");
  AddRepeated(command, "-s,--string", options->texts, "NAME=TEXT: a variable");
  command.add_flag("--postfix", options->postfix, "Print the instructions, not the value");
  command.footer("Functions: min(a, b), max(a, b), len(s), upper(s).");
  command.callback([options] { RunExpression(*options); });
}

}  // namespace zentavo::tool
