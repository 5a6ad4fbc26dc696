// Runs the built tool, which lies beside the test program.
#pragma once

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

}  // namespace zentavo::testing
