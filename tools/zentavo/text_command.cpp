#include <memory>

#include "tools/zentavo/arguments.h"
#include "tools/zentavo/command.h"
#include "tools/zentavo/files.h"
#include "zentavo/framework/number_text.h"
#include "zentavo/genlib/code_pages.h"
#include "zentavo/genlib/html_text.h"
#include "zentavo/genlib/masking.h"
#include "zentavo/genlib/output_text.h"
#include "zentavo/genlib/sql_text.h"
#include "zentavo/textout/spell.h"

namespace zentavo::tool {

namespace {

struct TextOptions {
  std::string text;
  std::string second;
  std::int32_t width = 0;
  std::int32_t code_page = 0;
};

using Options = std::shared_ptr<TextOptions>;

// A subcommand with the argument TEXT; `options` receives it.
CLI::App& AddRoutine(CLI::App& parent, const Options& options, const std::string& name,
                     const std::string& help) {
  CLI::App& command = *parent.add_subcommand(name, help);
  command.add_option("TEXT", options->text, "The text")->required();
  return command;
}

void PrintWrapped(const String& text, std::int32_t width) {
  String lines;
  std::int32_t position = 1;
  while (position <= static_cast<std::int32_t>(text.size())) {
    lines += ExtractProtasis(text, width, position) + u"\n";
  }
  PrintText(lines);
}

void AddLineRoutines(CLI::App& parent, const Options& options) {
  CLI::App& wrap = AddRoutine(parent, options, "wrap", "Wrap into lines of a width");
  wrap.add_option("WIDTH", options->width, "Characters a line")
      ->required()
      ->check(CLI::PositiveNumber);
  wrap.callback([options] { PrintWrapped(FromUtf8(options->text), options->width); });

  CLI::App& trim = AddRoutine(parent, options, "trim-literal", "Drop an edit mask's literals");
  trim.add_option("MASK", options->second, "The edit mask")->required();
  trim.callback(
      [options] { PrintText(TrimLiteral(FromUtf8(options->text), FromUtf8(options->second))); });

  CLI::App& unique = AddRoutine(parent, options, "unique", "Drop repeated items");
  unique.add_option("SEPARATOR", options->second, "The character between items")->required();
  unique.callback([options] {
    PrintText(ClearSameStrings(FromUtf8(options->text), CharacterArgument(options->second)));
  });
}

void AddMaskRoutines(CLI::App& parent, const Options& options) {
  AddRoutine(parent, options, "hash", "Print a 32-bit hash").callback([options] {
    PrintText(IntToStr(HashForString(FromUtf8(options->text))));
  });
  AddRoutine(parent, options, "mask", "Mask into printable characters").callback([options] {
    PrintUtf8(EncodeStr(options->text));
  });
  AddRoutine(parent, options, "unmask", "Print a masked text").callback([options] {
    PrintUtf8(DecodeStr(options->text));
  });
}

void AddHtmlRoutines(CLI::App& parent, const Options& options) {
  AddRoutine(parent, options, "html", "Make a page of command-link text").callback([options] {
    PrintText(XCHToHTML(FromUtf8(options->text)));
  });
  AddRoutine(parent, options, "fix-html", "Rename what an embedding host provides")
      .callback([options] { PrintText(fixHtmlCode(FromUtf8(options->text))); });
}

void AddLanguageRoutines(CLI::App& parent, const Options& options) {
  CLI::App& fits =
      AddRoutine(parent, options, "fits", "Print whether a code page has every character");
  fits.add_option("CODEPAGE", options->code_page, "Its number, 0 for the system's")->required();
  fits.callback([options] {
    const bool fit = !NotInCodePage(FromUtf8(options->text), options->code_page);
    PrintText(fit ? u"yes" : u"no");
  });

  CLI::App& words = *parent.add_subcommand("words", "Print an amount in words");
  words.add_option("NUMBER", options->text, "The amount")->required();
  words.add_option("LANGUAGE", options->second, "BG, SR, EN, TR, RO, RU; Greek otherwise")
      ->required();
  words.callback([options] {
    PrintText(Spell(ReadNumberArgument(options->text), {}, FromUtf8(options->second)));
  });
}

}  // namespace

void AddTextCommand(CLI::App& program) {
  auto options = std::make_shared<TextOptions>();
  CLI::App& command = *program.add_subcommand("text", "Wrap, trim, mask and convert texts");
  command.require_subcommand(1);
  AddLineRoutines(command, options);
  AddMaskRoutines(command, options);
  AddHtmlRoutines(command, options);
  AddLanguageRoutines(command, options);
}

}  // namespace zentavo::tool
