#include "tests/tools/tool_run.h"

namespace zentavo::testing {
namespace {

TEST(JsonCommand, ReadsLenientlyAndWritesExactly) {
  ExpectRuns(
      {"json"}, "json",
      {{{}, "{\"a\":[1,2.500000],\"\\u03B2\":\"x\\u0020y\"}\n", 0, "{a: [1, 2.5,], 'β': x y}"},
       {{"-"}, "null\n", 0, " nUll // none"},
       {{"--indent", "2"}, "[\n  1,\n  [\n    2,\n    3\n  ]\n]\n", 0, "[1,[2,3]]"},
       {{"--indent", "0"}, "[\n1,\n2\n]\n", 0, "[1,2]"},
       {{"--get", "a/1/B"}, "γ δ\n", 0, "{a:[0,{b:'γ δ'}]}"},
       {{"--get", "a"}, "[0,null,\"x\"]\n", 0, "{a:[0,,x]}"},
       {{"--get", "a/2"}, "Nothing at 'a/2'", 1, "{a:[0]}"},
       {{}, "Expected a \",\" or \"]\" at line 2, column 2", 1, "['b'\n 2]"},
       {{}, "Unexpected text after the value at line 2, column 1", 1, "{a:1}\n}"}});
}

}  // namespace
}  // namespace zentavo::testing
