#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/tools/tool_run.h"

namespace zentavo::testing {
namespace {

struct Row {
  std::vector<std::string> arguments;  // behind "json"
  const char* input;
  int exit_code;
  const char* printed;  // on standard output, or on standard error when the exit code is not 0
};

TEST(JsonCommand, ReadsLenientlyAndWritesExactly) {
  const Row rows[] = {
      {{}, "{a: [1, 2.5,], 'β': x y}", 0, "{\"a\":[1,2.500000],\"\\u03B2\":\"x\\u0020y\"}\n"},
      {{"-"}, " nUll // none", 0, "null\n"},
      {{"--indent", "2"}, "[1,[2,3]]", 0, "[\n  1,\n  [\n    2,\n    3\n  ]\n]\n"},
      {{"--indent", "0"}, "[1,2]", 0, "[\n1,\n2\n]\n"},
      {{"--get", "a/1/B"}, "{a:[0,{b:'γ δ'}]}", 0, "γ δ\n"},
      {{"--get", "a"}, "{a:[0,,x]}", 0, "[0,null,\"x\"]\n"},
      {{"--get", "a/2"}, "{a:[0]}", 1, "zentavo: Nothing at 'a/2'\n"},
      {{}, "['b'\n 2]", 1, "zentavo: Expected a \",\" or \"]\" at line 2, column 2\n"},
      {{}, "{a:1}\n}", 1, "zentavo: Unexpected text after the value at line 2, column 1\n"},
  };
  for (const Row& row : rows) {
    std::vector<std::string> arguments{"json"};
    arguments.insert(arguments.end(), row.arguments.begin(), row.arguments.end());
    const ProgramRun run = RunTool(arguments, row.input);
    EXPECT_EQ(run.exit_code, row.exit_code) << row.input;
    EXPECT_EQ(row.exit_code == 0 ? run.output : run.error, row.printed) << row.input;
  }
}

}  // namespace
}  // namespace zentavo::testing
