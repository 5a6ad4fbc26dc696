// Runs the built tool, which lies beside the test program.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/program_run.h"
#include "zentavo/platform/process.h"

namespace zentavo::testing {

inline ProgramRun RunTool(const std::vector<std::string>& arguments, std::string_view input = {}) {
  const std::filesystem::path tests = platform::ProgramPath();
  std::filesystem::path tool = tests.parent_path() / "zentavo";
  tool += tests.extension();
  return RunProgram(tool, arguments, input);
}

struct ToolCase {
  std::vector<std::string> arguments;
  std::string printed;  // on standard output; of a failure, the message
  int exit_code = 0;
  std::string_view input = {};
};

// Runs the tool with `command`, then each case's arguments. Failures print one line that begins
// with the tool's name; a wrong use (2) says at its end where help is: at the subcommand `help`.
inline void ExpectRuns(const std::vector<std::string>& command, const std::string& help,
                       const std::vector<ToolCase>& cases) {
  for (const ToolCase& row : cases) {
    std::vector<std::string> arguments = command;
    arguments.insert(arguments.end(), row.arguments.begin(), row.arguments.end());
    const ProgramRun run = RunTool(arguments, row.input);
    EXPECT_EQ(run.exit_code, row.exit_code) << row.printed << run.error;
    const std::string hint = row.exit_code == 2 ? " (try 'zentavo " + help + " --help')" : "";
    const bool good = row.exit_code == 0;
    EXPECT_EQ(run.output, good ? row.printed : "");
    EXPECT_EQ(run.error, good ? "" : "zentavo: " + row.printed + hint + "\n");
  }
}

}  // namespace zentavo::testing
