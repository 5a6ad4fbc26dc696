#include <memory>
#include <string>

#include "tools/zentavo/command.h"
#include "tools/zentavo/files.h"
#include "zentavo/framework/text.h"
#include "zentavo/settings/settings.h"

namespace zentavo::tool {

namespace {

struct SettingOptions {
  std::string section;
  std::string name;
  std::string value;
};

CLI::App& AddAction(CLI::App& setting, SettingOptions& options, const char* name,
                    const char* help) {
  CLI::App& command = *setting.add_subcommand(name, help);
  command.add_option("SECTION", options.section, "The section, '\\' between its levels")
      ->required();
  command.add_option("NAME", options.name, "The name in the section")->required();
  return command;
}

}  // namespace

void AddSettingCommand(CLI::App& program) {
  auto options = std::make_shared<SettingOptions>();
  CLI::App& setting = *program.add_subcommand("setting", "Read and change per-user settings");
  setting.require_subcommand(1);
  AddAction(setting, *options, "get", "Print a setting; its section is created")
      .callback([options] {
        PrintText(ReadRegistryString(FromUtf8(options->section), FromUtf8(options->name)));
      });
  CLI::App& set = AddAction(setting, *options, "set", "Change or add a setting");
  set.add_option("VALUE", options->value, "The value")->required();
  set.callback([options] {
    WriteRegistryString(FromUtf8(options->section), FromUtf8(options->name),
                        FromUtf8(options->value));
  });
}

}  // namespace zentavo::tool
