#include <charconv>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "tools/zentavo/command.h"
#include "tools/zentavo/files.h"
#include "zentavo/config/mem_ini_file.h"
#include "zentavo/framework/exception.h"
#include "zentavo/framework/string_list.h"
#include "zentavo/framework/text.h"
#include "zentavo/framework/text_encoding.h"

namespace zentavo::tool {

namespace {

struct IniOptions {
  std::string file;
  bool case_sensitive = false;
  std::string encoding;
  std::string section;
  std::string key;
  std::string value;
};

using Action = void (*)(TXMemIniFile& ini, const IniOptions& options);

std::optional<std::uint32_t> CodePageOf(std::string_view name) {
  if (name == "utf-8") return 65001;
  if (name == "utf-16") return 1200;
  if (name == "utf-16be") return 1201;
  if (!name.starts_with("cp")) return std::nullopt;
  std::uint32_t number = 0;
  const char* end = name.data() + name.size();
  const auto [rest, error] = std::from_chars(name.data() + 2, end, number);
  const bool whole = error == std::errc() && rest == end && number != 0;
  return whole ? std::optional(number) : std::nullopt;
}

std::optional<TEncoding> EncodingOf(const std::string& name) {
  if (name.empty()) return std::nullopt;
  const std::optional<std::uint32_t> code_page = CodePageOf(name);
  if (!code_page) {
    throw UsageError(u"'" + FromUtf8(name) + u"' is not utf-8, utf-16, utf-16be or cpNNNN");
  }
  return TEncoding(*code_page);
}

// Each string on a line of its own; an empty list prints nothing.
void PrintLines(const TStringList& lines) {
  std::string text;
  for (std::int32_t i = 0; i < lines.Count(); ++i) text += ToUtf8(lines[i]) + "\n";
  if (!text.empty()) PrintUtf8(text);
}

void PrintAll(TXMemIniFile& ini, const IniOptions&) {
  TStringList lines;
  ini.GetStrings(lines);
  PrintLines(lines);
}

void PrintSections(TXMemIniFile& ini, const IniOptions&) {
  TStringList names;
  ini.ReadSections(names);
  PrintLines(names);
}

void PrintKeys(TXMemIniFile& ini, const IniOptions& options) {
  TStringList names;
  ini.ReadSection(FromUtf8(options.section), names);
  PrintLines(names);
}

void PrintValue(TXMemIniFile& ini, const IniOptions& options) {
  PrintText(
      ini.ReadString(FromUtf8(options.section), FromUtf8(options.key), FromUtf8(options.value)));
}

// Refuses what the file could not give back: line breaks, a '=' in the key, a key that reads as a
// comment or as a header.
void RequireKept(const TXMemIniFile& ini, const IniOptions& options) {
  TStringList lines;
  ini.GetStrings(lines);
  const String text = lines.Text();  // a line break within a line parts it here as it would there
  lines.SetText(text);
  TXMemIniFile read({}, std::nullopt, options.case_sensitive);
  read.SetStrings(lines);
  const String value = FromUtf8(options.value);
  const String kept = read.ReadString(FromUtf8(options.section), FromUtf8(options.key), u"\n");
  if (kept == TrimView(value)) return;
  throw UsageError(u"'" + Excerpt(FromUtf8(options.key + "=" + options.value)) +
                   u"' cannot stand in an ini file under '" + FromUtf8(options.section) + u"'");
}

void SetValue(TXMemIniFile& ini, const IniOptions& options) {
  ini.WriteString(FromUtf8(options.section), FromUtf8(options.key), FromUtf8(options.value));
  RequireKept(ini, options);
}

void DeleteValue(TXMemIniFile& ini, const IniOptions& options) {
  ini.DeleteKey(FromUtf8(options.section), FromUtf8(options.key));
}

void EraseWhole(TXMemIniFile& ini, const IniOptions& options) {
  ini.EraseSection(FromUtf8(options.section));
}

enum class Effect { kReads, kWrites };

// From standard input to standard output. What changes nothing still passes the text on.
void RunOverStreams(const IniOptions& options, Action action, Effect effect) {
  TXMemIniFile ini({}, EncodingOf(options.encoding), options.case_sensitive);
  ini.LoadBytes(ReadWholeInput("-"));
  action(ini, options);
  if (effect == Effect::kWrites) PrintUtf8(ini.SaveBytes());
}

void Run(const IniOptions& options, Action action, Effect effect) {
  if (options.file == "-") return RunOverStreams(options, action, effect);
  TXMemIniFile ini(FromUtf8(options.file), EncodingOf(options.encoding), options.case_sensitive);
  action(ini, options);
  if (ini.Modified()) ini.UpdateFile();
}

CLI::App& AddAction(CLI::App& ini, const std::shared_ptr<IniOptions>& options, const char* name,
                    const char* help, Action action, Effect effect = Effect::kReads) {
  CLI::App& command = *ini.add_subcommand(name, help);
  command.callback([options, action, effect] { Run(*options, action, effect); });
  return command;
}

void AddSection(CLI::App& command, IniOptions& options) {
  command.add_option("SECTION", options.section, "The section")->required();
}

void AddKey(CLI::App& command, IniOptions& options) {
  AddSection(command, options);
  command.add_option("KEY", options.key, "The name in the section")->required();
}

void AddReads(CLI::App& ini, const std::shared_ptr<IniOptions>& options) {
  AddAction(ini, options, "text", "Print the file in its normalised form", PrintAll);
  AddAction(ini, options, "sections", "Print the names of the sections", PrintSections);
  AddSection(AddAction(ini, options, "keys", "Print the names in a section", PrintKeys), *options);
  CLI::App& get = AddAction(ini, options, "get", "Print a value", PrintValue);
  AddKey(get, *options);
  get.add_option("DEFAULT", options->value, "What to print when there is none");
}

void AddWrites(CLI::App& ini, const std::shared_ptr<IniOptions>& options) {
  CLI::App& set =
      AddAction(ini, options, "set", "Change or add a value", SetValue, Effect::kWrites);
  AddKey(set, *options);
  set.add_option("VALUE", options->value, "The value")->required();
  AddKey(AddAction(ini, options, "delete", "Delete a value", DeleteValue, Effect::kWrites),
         *options);
  AddSection(AddAction(ini, options, "erase", "Erase a section", EraseWhole, Effect::kWrites),
             *options);
}

}  // namespace

void AddIniCommand(CLI::App& program) {
  auto options = std::make_shared<IniOptions>();
  CLI::App& ini = *program.add_subcommand("ini", "Read and change an ini file");
  ini.add_option("FILE", options->file, "The file; '-' reads standard input, writes the output")
      ->required();
  ini.add_flag("--case-sensitive", options->case_sensitive, "Tell upper from lower case in names");
  ini.add_option("--encoding", options->encoding,
                 "Read a file without a mark, and write, as utf-8, utf-16, utf-16be or cpNNNN");
  ini.require_subcommand(1)->fallthrough();
  AddReads(ini, options);
  AddWrites(ini, options);
}

}  // namespace zentavo::tool
