#include <cstdint>
#include <map>
#include <memory>
#include <string>

#include "tools/zentavo/command.h"
#include "zentavo/framework/text.h"
#include "zentavo/genlib/event_log.h"

namespace zentavo::tool {

namespace {

struct EventOptions {
  std::int32_t type = 0;
  std::int32_t id = 0;
  std::string message;
};

const std::map<std::string, std::int32_t> kTypes = {
    {"error", 1}, {"warning", 2}, {"information", 4}};

}  // namespace

void AddEventCommand(CLI::App& program) {
  auto options = std::make_shared<EventOptions>();
  CLI::App& command = *program.add_subcommand("event", "Write an event to the system's log");
  command.add_option("TYPE", options->type, "error, warning, information or a number")
      ->required()
      ->transform(CLI::CheckedTransformer(kTypes).description("") | CLI::Range(0, 0xFFFF));
  command.add_option("ID", options->id, "The event's number")->required();
  command.add_option("MESSAGE", options->message, "The message")->required();
  command.callback([options] {
    WriteToWindowsEventLog(options->id, FromUtf8(options->message), options->type);
  });
}

}  // namespace zentavo::tool
