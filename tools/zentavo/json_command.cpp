#include <cstdint>
#include <memory>
#include <optional>

#include "tools/zentavo/command.h"
#include "tools/zentavo/files.h"
#include "zentavo/framework/number_text.h"
#include "zentavo/framework/text.h"
#include "zentavo/json/text_form.h"

namespace zentavo::tool {

namespace {

struct JsonOptions {
  std::string file = "-";
  std::optional<std::int32_t> indent;
  std::optional<std::string> path;
};

// The exception's own message holds the whole text.
std::unique_ptr<TZAbstractObject> ReadFile(const std::string& file) {
  try {
    return ReadJSONUtf8(ReadWholeInput(file));
  } catch (const ParseException& error) {
    throw Exception(error.Reason() + u" at line " + IntToStr(error.Line()) + u", column " +
                    IntToStr(error.Column()));
  }
}

void RunJson(const JsonOptions& options) {
  const auto value = ReadFile(options.file);
  const TZAbstractObject* shown = value.get();
  if (options.path) {
    const String path = FromUtf8(*options.path);
    shown = FindByPath(*value, path);
    if (shown == nullptr) throw Exception(u"Nothing at '" + Excerpt(path) + u"'");
    if (shown->Kind() == JSONKind::kString) return PrintText(shown->toString());
  }
  PrintText(options.indent ? valueToString(shown, *options.indent) : valueToString(shown));
}

}  // namespace

void AddJsonCommand(CLI::App& program) {
  auto options = std::make_shared<JsonOptions>();
  CLI::App& command = *program.add_subcommand("json", "Read JSON leniently and write it exactly");
  command.add_option("FILE", options->file, "The file; standard input without it");
  command.add_option("--indent", options->indent, "Break lines and indent by so many blanks")
      ->check(CLI::Range(0, 1000));
  command.add_option("--get", options->path, "Print the value at this path, such as a/b/0");
  command.callback([options] { RunJson(*options); });
}

}  // namespace zentavo::tool
