#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tools/zentavo/command.h"
#include "tools/zentavo/csv.h"
#include "tools/zentavo/escaped_text.h"
#include "tools/zentavo/files.h"
#include "tools/zentavo/formula_table.h"
#include "tools/zentavo/formula_values.h"
#include "zentavo/formula/parser.h"
#include "zentavo/framework/text.h"

namespace zentavo::tool {

namespace {

struct FormulaOptions {
  std::string text;
  std::vector<std::string> numbers;
  std::vector<std::string> texts;
  std::string show = "value";
  bool escaped = false;
  std::string table;
  std::vector<std::string> sets;
  std::string output = "-";
  bool keep_going = false;
};

// The formula as one line, and a caret under the unit at `position`.
std::string PlaceInFormula(StringView formula, std::int32_t position) {
  if (position < 1) return {};
  String line(formula);
  for (char16_t& unit : line) {
    if (unit < u' ') unit = u' ';
  }
  const std::size_t before = static_cast<std::size_t>(position - 1);
  return ToUtf8(line) + "\n" + std::string(before, ' ') + "^\n";
}

void Execute(TXParser& parser, StringView formula) {
  try {
    parser.SetFormula(formula);
    parser.Execute();
  } catch (const EXParserError& error) {
    throw DetailedError(error.Message(), PlaceInFormula(formula, error.Position()));
  }
}

String Shown(const TXParser& parser, const std::string& what) {
  if (what == "type") return TypeName(parser.CResult.ResultType);
  if (what == "debug") return parser.CResult.DebugStr;
  if (what == "compiled") return EscapedText(parser.Formula());
  return FromUtf8(ValueText(parser.CResult));
}

void RunText(const FormulaOptions& options) {
  NamedValues values(options.numbers, options.texts);
  TXParser parser;
  values.InsertInto(parser);
  const String text = FromUtf8(options.text);
  Execute(parser, options.escaped ? UnescapedText(text) : text);
  PrintText(Shown(parser, options.show));
}

std::vector<ColumnFormula> ReadSets(const std::vector<std::string>& arguments) {
  std::vector<ColumnFormula> formulas;
  for (const std::string& argument : arguments) {
    const NamedValue set = SplitNamedValue(argument);
    formulas.push_back({set.name, FromUtf8(set.value)});
  }
  return formulas;
}

void ReportFailures(const TableOutcome& outcome) {
  std::string report = std::to_string(outcome.failures) + " failures";
  if (outcome.failures == 1) report.pop_back();
  if (outcome.failures > 0) report += ", the first in " + ToUtf8(outcome.first_failure);
  PrintMessage(report);
}

void RunTable(const FormulaOptions& options) {
  const std::vector<ColumnFormula> formulas = ReadSets(options.sets);
  NamedValues variables(options.numbers, options.texts);
  const RowFailure on_failure =
      options.keep_going ? RowFailure::kLeavesEmpty : RowFailure::kEndsRun;
  std::optional<InputFile> input(options.table);
  OutputFile output(options.output);
  CsvReader reader([&](std::span<char> block) { return input->Read(block); });
  CsvWriter writer([&](std::string_view block) { output.Write(block); });
  const TableOutcome outcome = EvaluateTable(reader, writer, formulas, variables, on_failure);
  input.reset();  // which may be the file to be replaced
  output.Commit();
  if (options.keep_going) ReportFailures(outcome);
}

constexpr const char* kDescription =
    "Evaluate a business formula, or formulas over the rows of a CSV table";

constexpr const char* kFooter =
    "In a table each column is a variable: a number where its text is one, else a text. Signs "
    "that\n"
    "cannot stand in a name read as '_' (\"Unit price\" is Unit_price), and a title that begins "
    "with\n"
    "a digit or is the name of a function gets a '_' in front (\"Date\" is _Date). Options may "
    "stand\n"
    "before or after TEXT; '--' ends them, so that TEXT may begin with '-'.";

void AddTextOptions(CLI::App& command, FormulaOptions& options) {
  command.add_option("TEXT", options.text, "The formula");
  command.add_option("--show", options.show, "What to print of the value")
      ->check(CLI::IsMember({"value", "type", "debug", "compiled"}));
  command.add_flag("--escaped", options.escaped, "TEXT is written as --show compiled prints it");
}

void AddTableOptions(CLI::App& command, FormulaOptions& options) {
  CLI::Option* table = command.add_option("--table", options.table, "The table to read (CSV)");
  for (const char* name : {"TEXT", "--show", "--escaped"}) {
    table->excludes(command.get_option(name));
  }
  AddRepeated(command, "--set", options.sets,
              "COLUMN=FORMULA: the column to add or replace; sees the columns set before")
      ->needs(table);
  command
      .add_option("-o,--output", options.output, "The table to write; standard output otherwise")
      ->needs(table);
  command
      .add_flag("--keep-going", options.keep_going,
                "Leave a cell empty whose formula fails, and count the failures")
      ->needs(table);
}

}  // namespace

void AddFormulaCommand(CLI::App& program) {
  auto options = std::make_shared<FormulaOptions>();
  CLI::App& command = *program.add_subcommand("formula", kDescription)->footer(kFooter);
  AddTextOptions(command, *options);
  AddRepeated(command, "-n,--number", options->numbers, "NAME=NUMBER: a variable");
  AddRepeated(command, "-s,--string", options->texts, "NAME=TEXT: a variable");
  AddTableOptions(command, *options);
  command.callback([options, &command] {
    if (command.count("--table") > 0) return RunTable(*options);
    if (command.count("TEXT") == 0) throw UsageError(u"TEXT or --table is required");
    RunText(*options);
  });
}

}  // namespace zentavo::tool
