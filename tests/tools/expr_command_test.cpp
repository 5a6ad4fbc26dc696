#include "tests/tools/tool_run.h"

namespace zentavo::testing {
namespace {

TEST(ExprCommand, PrintsValuesAndInstructions) {
  ExpectRuns({"expr"}, "expr",
             {{{"a = b + 1", "-n", "a=1", "-n", "b=1.5"}, "1\n"},  // (a = b) + 1
              {{"a > 1 and name = 'β'", "-n", "A=2", "-s", "name=β"}, "True\n"},
              {{"1 / 0"}, "Null\n"},
              {{"null", "--postfix"}, "opString Null\n"},
              {{"-n", "x=1", "--postfix", "--", "-max(x, 2) + 'a b'"},
               "opNegative\nopVariable 1\nopNumber 2\nopFunction 2\nopString 'a b'\nopAdd\n"},
              {{"min(3, 2) + max(3, 2)"}, "5\n"},
              {{"max(null, 1)"}, "Null\n"},
              {{"len('αβγ') + len(12.5)"}, "7\n"},
              {{"upper('straße ω')"}, "STRAßE Ω\n"},
              {{""}, "Null\n"},
              {{"max(1)"}, "Not enough parameters", 1},
              {{"x"}, "Undeclared identifier 'x'", 1},
              {{"1", "-n", "not=1"}, "'not' cannot be the name of a variable", 2},
              {{"1", "-n", "x=y"}, "'y' is not a number", 2}});
}

}  // namespace
}  // namespace zentavo::testing
