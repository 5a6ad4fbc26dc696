// Runs a program to its end, with its standard streams in files.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/temporary_folder.h"

#ifdef _WIN32
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
#else
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
extern char** environ;  // NOLINT(readability-redundant-declaration): not every system declares it
#endif

namespace zentavo::testing {

inline std::string ReadBytes(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

inline void WriteBytes(const std::filesystem::path& path, std::string_view bytes) {
  std::ofstream(path, std::ios::binary).write(bytes.data(), std::ssize(bytes));
}

inline std::filesystem::path PathOf(std::string_view utf8) {
  return std::u8string(utf8.begin(), utf8.end());
}

struct StandardFiles {
  std::filesystem::path input, output, error;
};

#ifdef _WIN32

// As the C runtime and the shell take it apart again.
inline std::wstring Quoted(const std::wstring& argument) {
  std::wstring quoted = L"\"";
  std::size_t backslashes = 0;
  for (const wchar_t unit : argument) {
    if (unit == L'"') quoted.append(backslashes + 1, L'\\');
    backslashes = unit == L'\\' ? backslashes + 1 : 0;
    quoted += unit;
  }
  return quoted.append(backslashes, L'\\') + L"\"";
}

inline HANDLE OpenInherited(const std::filesystem::path& path, DWORD access, DWORD creation) {
  SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
  return CreateFileW(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited, creation,
                     FILE_ATTRIBUTE_NORMAL, nullptr);
}

inline int RunToEnd(const std::filesystem::path& program, const std::vector<std::string>& arguments,
                    const StandardFiles& files) {
  std::wstring line = Quoted(program.wstring());
  for (const std::string& argument : arguments) line += L" " + Quoted(PathOf(argument).wstring());
  STARTUPINFOW start{};
  start.cb = sizeof start;
  start.dwFlags = STARTF_USESTDHANDLES;
  start.hStdInput = OpenInherited(files.input, GENERIC_READ, OPEN_EXISTING);
  start.hStdOutput = OpenInherited(files.output, GENERIC_WRITE, CREATE_ALWAYS);
  start.hStdError = OpenInherited(files.error, GENERIC_WRITE, CREATE_ALWAYS);
  PROCESS_INFORMATION process{};
  const BOOL started = CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, TRUE, 0,
                                      nullptr, nullptr, &start, &process);
  for (const HANDLE handle : {start.hStdInput, start.hStdOutput, start.hStdError}) {
    CloseHandle(handle);
  }
  if (!started) throw std::runtime_error("The program did not start");
  DWORD code = 0;
  WaitForSingleObject(process.hProcess, INFINITE);
  GetExitCodeProcess(process.hProcess, &code);
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  return static_cast<int>(code);
}

#else

inline int RunToEnd(const std::filesystem::path& program, const std::vector<std::string>& arguments,
                    const StandardFiles& files) {
  std::vector<char*> pointers{const_cast<char*>(program.c_str())};
  for (const std::string& argument : arguments) {
    pointers.push_back(const_cast<char*>(argument.c_str()));
  }
  pointers.push_back(nullptr);
  constexpr int kNew = O_WRONLY | O_CREAT | O_TRUNC;
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 0, files.input.c_str(), O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&actions, 1, files.output.c_str(), kNew, 0600);
  posix_spawn_file_actions_addopen(&actions, 2, files.error.c_str(), kNew, 0600);
  pid_t child = 0;
  const int error =
      posix_spawn(&child, program.c_str(), &actions, nullptr, pointers.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0) throw std::runtime_error("The program did not start");
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

#endif

struct ProgramRun {
  int exit_code = -1;
  std::string output;
  std::string error;
};

// `arguments` are UTF-8, `input` is what the program finds on its standard input.
inline ProgramRun RunProgram(const std::filesystem::path& program,
                             const std::vector<std::string>& arguments,
                             std::string_view input = {}) {
  const TemporaryFolder folder;
  const StandardFiles files{folder / u"in", folder / u"out", folder / u"err"};
  WriteBytes(files.input, input);
  ProgramRun run;
  run.exit_code = RunToEnd(program, arguments, files);
  run.output = ReadBytes(files.output);
  run.error = ReadBytes(files.error);
  return run;
}

}  // namespace zentavo::testing
