#include "zentavo/platform/process.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#ifndef _WIN32
#include <sys/wait.h>
#endif

#include "support/temporary_folder.h"
#include "zentavo/platform/code_pages.h"
#include "zentavo/platform/console.h"
#include "zentavo/platform/files.h"

namespace zentavo::platform {
namespace {

using testing::TemporaryFolder;

// The arguments of this program behind "--", in UTF-8.
std::vector<std::string> OwnArguments() {
  const std::vector<std::string> given = ::testing::internal::GetArgvs();
  std::vector<const char*> pointers;
  for (const std::string& argument : given) pointers.push_back(argument.c_str());
  const std::vector<std::string> all =
      ProgramArguments(static_cast<int>(pointers.size()), pointers.data());
  const auto mark = std::find(all.begin(), all.end(), "--");
  return {mark == all.end() ? mark : mark + 1, all.end()};
}

// Runs as a child of the tests below: writes the arguments behind the first into the file that the
// first names.
TEST(ChildProcess, DISABLED_WritesItsArguments) {
  const std::vector<std::string> arguments = OwnArguments();
  ASSERT_FALSE(arguments.empty());
  std::ofstream out(std::filesystem::path(std::u8string(arguments[0].begin(), arguments[0].end())),
                    std::ios::binary);
  for (std::size_t i = 1; i < arguments.size(); ++i) out << '[' << arguments[i] << ']';
  out.close();
  std::_Exit(7);
}

TEST(ChildProcess, DISABLED_Aborts) {
  std::abort();
}

std::vector<std::u16string> ChildArguments(std::u16string_view test) {
  return {u"--gtest_filter=ChildProcess.DISABLED_" + std::u16string(test),
          u"--gtest_also_run_disabled_tests", u"--gtest_brief=1", u"--"};
}

TEST(StartProgram, PassesEachArgumentUnchanged) {
  const TemporaryFolder folder;
  const std::u16string out = folder / u"out";
  std::vector<std::u16string> arguments = ChildArguments(u"WritesItsArguments");
  arguments.push_back(out);
  std::u16string expected;
  for (const std::u16string_view argument :
       {u"", u"plain", u"two words", u"\"", u"a\"b c", u"\\", u"\\\\", u"ends\\", u"\\\"",
        u"\\\\\"x", u"Ελληνικά", u"$HOME %PATH% *", u"tab\there"}) {
    arguments.emplace_back(argument);
    expected.append(u"[").append(argument).append(u"]");
  }
  std::int32_t exit_code = 0;
  ASSERT_EQ(StartProgram(ProgramPath(), arguments, 0, ProcessWait::kUntilEnd, exit_code), 0U);
  EXPECT_EQ(exit_code, 7);
  std::ifstream in(std::filesystem::path(out), std::ios::binary);
  const std::string written(std::istreambuf_iterator<char>(in), {});
  EXPECT_EQ(written, EncodeCodePage(expected, kCodePageUtf8));
}

TEST(StartProgram, ReportsWhatDoesNotStart) {
  const TemporaryFolder folder;
  const std::vector<std::u16string> with_zero = {std::u16string(u"a\0b", 3)};
  for (const ProcessWait wait : {ProcessWait::kNoWait, ProcessWait::kUntilEnd}) {
    std::int32_t exit_code = 55;
    EXPECT_NE(StartProgram(folder / u"missing", {}, 0, wait, exit_code), 0U);
    EXPECT_NE(StartProgram(ProgramPath(), with_zero, 0, wait, exit_code), 0U);
    EXPECT_EQ(exit_code, 55);
  }
}

#ifndef _WIN32
TEST(StartProgram, CountsASignalBeyond128) {
  std::int32_t exit_code = 0;
  ASSERT_EQ(
      StartProgram(ProgramPath(), ChildArguments(u"Aborts"), 0, ProcessWait::kUntilEnd, exit_code),
      0U);
  EXPECT_EQ(exit_code, 128 + SIGABRT);
}

TEST(StartProgram, LeavesNoChildBehindWhenNotWaitedFor) {
  std::int32_t exit_code = 0;
  ASSERT_EQ(StartProgram(u"/bin/true", {}, 0, ProcessWait::kNoWait, exit_code), 0U);
  EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
  EXPECT_EQ(errno, ECHILD);
}
#endif

}  // namespace
}  // namespace zentavo::platform
