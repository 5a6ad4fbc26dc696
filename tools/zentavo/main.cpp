// zentavo: the library's subsystems as commands.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <exception>
#include <string>
#include <vector>

#include "tools/zentavo/command.h"
#include "zentavo/foundation/package.h"
#include "zentavo/platform/console.h"

namespace {

using zentavo::tool::DetailedError;
using zentavo::tool::PrintMessage;
using zentavo::tool::UsageError;

constexpr int kFailure = 1;
constexpr int kWrongUsage = 2;

constexpr void (*kCommands[])(CLI::App&) = {
    zentavo::tool::AddFormulaCommand, zentavo::tool::AddExprCommand,
    zentavo::tool::AddIniCommand,     zentavo::tool::AddJsonCommand,
    zentavo::tool::AddMatchCommand,   zentavo::tool::AddOptimiseCommand,
    zentavo::tool::AddAmountCommand,  zentavo::tool::AddSqlCommand,
    zentavo::tool::AddTextCommand,    zentavo::tool::AddAccessCommand,
    zentavo::tool::AddHttpCommand,    zentavo::tool::AddHtmlCommand,
    zentavo::tool::AddSettingCommand, zentavo::tool::AddEventCommand,
    zentavo::tool::AddWsCommand,
#ifdef ZENTAVO_SQL
    zentavo::tool::AddDataCommand,
#endif
};

void AddCommands(CLI::App& program) {
  program.set_version_flag("--version", "zentavo " ZENTAVO_VERSION);
  program.require_subcommand(1);
  // Otherwise a text such as /a is taken for an option on Windows.
  program.allow_windows_style_options(false);
  for (const auto add : kCommands) add(program);
}

// The units of the library, for the time the program runs: a static library does not start them.
class LoadedPackage {
 public:
  LoadedPackage() { zentavo::LoadPackage(); }
  LoadedPackage(const LoadedPackage&) = delete;
  LoadedPackage& operator=(const LoadedPackage&) = delete;
  ~LoadedPackage() { zentavo::UnloadPackage(); }
};

// "zentavo ini get", as far as the command line was understood.
std::string CommandInUse(const CLI::App& program) {
  const std::vector<CLI::App*> commands = program.get_subcommands();
  return program.get_name() + (commands.empty() ? "" : " " + CommandInUse(*commands.front()));
}

int ReportUsage(const CLI::App& program, const std::string& message) {
  PrintMessage(message + " (try '" + CommandInUse(program) + " --help')");
  return kWrongUsage;
}

int Run(std::vector<std::string> arguments) {
  CLI::App program("Business formulas, texts, amounts and data from a shell", "zentavo");
  AddCommands(program);
  std::reverse(arguments.begin(), arguments.end());
  try {
    program.parse(std::move(arguments));
  } catch (const CLI::Success& request) {  // --help and --version
    return program.exit(request);
  } catch (const CLI::Error& error) {
    return ReportUsage(program, error.what());
  } catch (const UsageError& error) {
    return ReportUsage(program, error.what());
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  zentavo::platform::SetBinaryStandardStreams();
  try {
    const LoadedPackage package;
    return Run(zentavo::platform::ProgramArguments(argc, argv));
  } catch (const DetailedError& error) {
    PrintMessage(error.what());
    if (zentavo::platform::StandardErrorIsTerminal()) std::fputs(error.Details().c_str(), stderr);
  } catch (const std::exception& error) {
    PrintMessage(error.what());
  }
  return kFailure;
}
