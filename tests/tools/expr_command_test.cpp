#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/tools/tool_run.h"

namespace zentavo::testing {
namespace {

struct Row {
  std::vector<std::string> arguments;  // behind "expr"
  int exit_code;
  const char* printed;  // on standard output, or on standard error when the exit code is not 0
};

TEST(ExprCommand, PrintsValuesAndInstructions) {
  const Row rows[] = {
      {{"7 / 2"}, 0, "3.5\n"},
      {{"a = b + 1", "-n", "a=1", "-n", "b=1.5"}, 0, "1\n"},  // (a = b) + 1
      {{"a > 1 and name = 'β'", "-n", "A=2", "-s", "name=β"}, 0, "True\n"},
      {{"1 / 0"}, 0, "Null\n"},
      {{"null"}, 0, "Null\n"},
      {{"null", "--postfix"}, 0, "opString Null\n"},
      {{"-n", "x=1", "--postfix", "--", "-max(x, 2) + 'a b'"},
       0,
       "opNegative\nopVariable 1\nopNumber 2\nopFunction 2\nopString 'a b'\nopAdd\n"},
      {{"min(3, 2) + max(3, 2)"}, 0, "5\n"},
      {{"min(1, null)"}, 0, "Null\n"},
      {{"max(null, 1)"}, 0, "Null\n"},
      {{"len('αβγ') + len(12.5)"}, 0, "7\n"},
      {{"len(null)"}, 0, "Null\n"},
      {{"upper('straße ω')"}, 0, "STRAßE Ω\n"},
      {{""}, 0, "Null\n"},
      {{"max(1)"}, 1, "zentavo: Not enough parameters\n"},
      {{"len(1, 2)"}, 1, "zentavo: To many parameters\n"},
      {{"x"}, 1, "zentavo: Undeclared identifier 'x'\n"},
      {{"(1"}, 1, "zentavo: Expected symbol ')'\n"},
      {{"1", "-n", "not=1"},
       2,
       "zentavo: 'not' cannot be the name of a variable (try 'zentavo expr --help')\n"},
      {{"1", "-n", "x=y"}, 2, "zentavo: 'y' is not a number (try 'zentavo expr --help')\n"},
  };
  for (const Row& row : rows) {
    std::vector<std::string> arguments = {"expr"};
    arguments.insert(arguments.end(), row.arguments.begin(), row.arguments.end());
    const ProgramRun run = RunTool(arguments);
    EXPECT_EQ(run.exit_code, row.exit_code) << row.arguments.front();
    EXPECT_EQ(row.exit_code == 0 ? run.output : run.error, row.printed) << row.arguments.front();
    EXPECT_EQ(row.exit_code == 0 ? run.error : run.output, "") << row.arguments.front();
  }
}

}  // namespace
}  // namespace zentavo::testing
