#include <memory>

#include "tools/zentavo/command.h"
#include "tools/zentavo/files.h"
#include "zentavo/genlib/access.h"

namespace zentavo::tool {

namespace {

struct AccessOptions {
  std::int32_t user = 0;
  std::int32_t group = 0;
  std::string text;
  std::string fallback = "yes";
};

}  // namespace

void AddAccessCommand(CLI::App& program) {
  auto options = std::make_shared<AccessOptions>();
  CLI::App& command = *program.add_subcommand("access", "Whether an access text admits a user");
  command.add_option("USER", options->user, "The user's number")->required();
  command.add_option("GROUP", options->group, "The number of the user's group")->required();
  command.add_option("TEXT", options->text, "The access text, such as U12,U15;G3")->required();
  command.add_option("--default", options->fallback, "The answer to an empty text (yes)")
      ->check(CLI::IsMember({"yes", "no"}));
  command.callback([options] {
    const bool access = HasAccess(options->user, options->group, FromUtf8(options->text),
                                  options->fallback == "yes");
    PrintUtf8(access ? "yes" : "no");
  });
}

}  // namespace zentavo::tool
