#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "tools/zentavo/command.h"
#include "tools/zentavo/files.h"
#include "zentavo/framework/stream.h"
#include "zentavo/framework/text.h"
#include "zentavo/textout/html_object.h"

namespace zentavo::tool {

namespace {

struct HtmlOptions {
  std::string file;
  std::string name;
  std::vector<std::string> parts;
};

void Pack(const HtmlOptions& options) {
  TZentavoHtmlObj object;
  for (const std::string& part : options.parts) {
    const NamedValue named = SplitNamedValue(part);
    object.AddPart(named.name, ReadWholeInput(named.value));
  }
  TMemoryStream stream;
  object.SaveToStream(stream);
  OutputFile out(options.file);
  out.Write(
      {reinterpret_cast<const char*>(stream.Memory()), static_cast<std::size_t>(stream.Size())});
  out.Commit();
}

void Load(const std::string& file, TZentavoHtmlObj& object) {
  const std::string bytes = ReadWholeInput(file);
  TMemoryStream stream;
  stream.WriteBuffer(bytes.data(), static_cast<std::int64_t>(bytes.size()));
  object.LoadFromStream(stream);
}

void List(const HtmlOptions& options) {
  TZentavoHtmlObj object;
  Load(options.file, object);
  std::string lines;
  for (std::int32_t i = 0; i < object.PartsCount(); ++i) {
    AnsiString name;
    AnsiString content;
    object.GetPart(i, name, content);
    lines += name + "\t" + std::to_string(content.size()) + "\n";
  }
  if (!lines.empty()) PrintUtf8(lines);
}

void Get(const HtmlOptions& options) {
  TZentavoHtmlObj object;
  Load(options.file, object);
  const std::int32_t index = object.GetPartByName(options.name);
  if (index < 0) throw Exception(u"There is no part '" + Excerpt(FromUtf8(options.name)) + u"'");
  AnsiString name;
  AnsiString content;
  object.GetPart(index, name, content);
  OutputFile out("-");
  out.Write(content);
  out.Commit();
}

}  // namespace

void AddHtmlCommand(CLI::App& program) {
  auto options = std::make_shared<HtmlOptions>();
  CLI::App& html =
      *program.add_subcommand("html", "Pack files into an HTML object and unpack them");
  html.require_subcommand(1);

  CLI::App& pack = *html.add_subcommand("pack", "Write an HTML object");
  pack.add_option("OUT", options->file, "The file; '-' writes standard output")->required();
  pack.add_option("PART", options->parts, "NAME=FILE, in order")->required();
  pack.callback([options] { Pack(*options); });

  CLI::App& list = *html.add_subcommand("list", "Print the names and sizes of the parts");
  list.add_option("IN", options->file, "The file; '-' reads standard input")->required();
  list.callback([options] { List(*options); });

  CLI::App& get = *html.add_subcommand("get", "Print the bytes of a part");
  get.add_option("IN", options->file, "The file; '-' reads standard input")->required();
  get.add_option("NAME", options->name, "The part's name")->required();
  get.callback([options] { Get(*options); });
}

}  // namespace zentavo::tool
