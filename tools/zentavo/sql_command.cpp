#include <array>
#include <functional>
#include <memory>

#include "tools/zentavo/arguments.h"
#include "tools/zentavo/command.h"
#include "tools/zentavo/files.h"
#include "zentavo/genlib/composite_keys.h"
#include "zentavo/genlib/sql_text.h"
#include "zentavo/genlib/sub_queries.h"

namespace zentavo::tool {

namespace {

// A subcommand that takes texts and prints a text.
template <std::size_t N>
void AddTextRoutine(CLI::App& parent, const std::string& name, const std::string& help,
                    const std::array<const char*, N>& arguments,
                    std::function<String(const std::array<String, N>&)> routine) {
  auto values = std::make_shared<std::array<std::string, N>>();
  CLI::App& command = *parent.add_subcommand(name, help);
  for (std::size_t i = 0; i < N; ++i) {
    command.add_option(arguments[i], (*values)[i])->required();
  }
  command.callback([values, routine = std::move(routine)] {
    std::array<String, N> texts;
    for (std::size_t i = 0; i < N; ++i) texts[i] = FromUtf8((*values)[i]);
    PrintText(routine(texts));
  });
}

void AddIn(CLI::App& parent) {
  struct Options {
    std::string field;
    std::vector<std::int32_t> values;
  };
  auto options = std::make_shared<Options>();
  CLI::App& command = *parent.add_subcommand("in", "A membership condition over integers");
  command.add_option("FIELD", options->field, "The field")->required();
  command.add_option("INT", options->values, "The values");
  command.callback(
      [options] { PrintText(MakeInQuery(FromUtf8(options->field), options->values)); });
}

void AddInject(CLI::App& parent) {
  struct Options {
    std::string sql;
    std::vector<std::string> names;
    std::vector<std::string> queries;
  };
  auto options = std::make_shared<Options>();
  CLI::App& command =
      *parent.add_subcommand("inject", "Pack select-list items and clauses with a statement");
  command.add_option("SQL", options->sql, "The statement")->required();
  AddRepeated(command, "--name", options->names, "A further item of the select list");
  AddRepeated(command, "--query", options->queries, "The clause behind it");
  command.callback([options] {
    if (options->names.size() != options->queries.size()) {
      throw UsageError(u"there must be as many --query as --name");
    }
    PrintText(InjectSubQueries(FromUtf8(options->sql), TextArguments(options->names),
                               TextArguments(options->queries)));
  });
}

}  // namespace

void AddSqlCommand(CLI::App& program) {
  CLI::App& command = *program.add_subcommand("sql", "Compose SQL text");
  command.require_subcommand(1);
  AddIn(command);
  AddTextRoutine<2>(command, "in-text", "A membership condition over a text of values",
                    {"FIELD", "TEXT"},
                    [](const auto& texts) { return MakeInQuery(texts[0], StringView(texts[1])); });
  AddTextRoutine<2>(command, "in-values", "The same without repeated values", {"FIELD", "TEXT"},
                    [](const auto& texts) { return FormatSQLInValues(texts[0], texts[1]); });
  AddTextRoutine<3>(
      command, "add-fields", "Add missing columns to a select list", {"FIELDS", "ALIAS", "SQL"},
      [](const auto& texts) { return AddFldsInSelect(texts[0], texts[1], texts[2]); });
  AddTextRoutine<2>(command, "keys", "A condition over composite keys", {"FIELDS", "VALUES"},
                    [](const auto& texts) { return ComplexMultiSQL(texts[0], texts[1]); });
  AddInject(command);
  AddTextRoutine<2>(command, "check", "Complete a statement by what was packed",
                    {"STATEMENT", "PACKED"}, [](const auto& texts) {
                      auto [statement, packed] = texts;
                      CheckSubQueries(statement, packed);
                      return statement;
                    });
}

}  // namespace zentavo::tool
