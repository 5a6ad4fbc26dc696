#include "zentavo/platform/process.h"

#include <algorithm>
#include <array>
#include <vector>

#include "zentavo/platform/windows/wide.h"

namespace zentavo::platform {

namespace {

constexpr DWORD kLongestPath = 32768;  // units, with the zero at the end

// Appends `argument` so that the C runtime of the started program reads it back as one argument:
// between quotes, with the backslashes doubled that stand before a quote.
void AppendQuoted(std::wstring& line, std::wstring_view argument) {
  line += L'"';
  std::size_t backslashes = 0;
  for (const wchar_t unit : argument) {
    if (unit == L'"') line.append(backslashes + 1, L'\\');
    backslashes = unit == L'\\' ? backslashes + 1 : 0;
    line += unit;
  }
  line.append(backslashes, L'\\');
  line += L'"';
}

std::wstring CommandLine(const std::wstring& program, std::span<const std::u16string> arguments) {
  std::wstring line = L"\"" + program + L"\"";
  for (const std::u16string& argument : arguments) {
    line += L' ';
    AppendQuoted(line, ToWide(argument));
  }
  return line;
}

SystemError Create(const std::wstring& program, std::wstring line, int show_mode,
                   PROCESS_INFORMATION& process) {
  STARTUPINFOW start{};
  start.cb = sizeof start;
  start.dwFlags = STARTF_USESHOWWINDOW;
  start.wShowWindow = static_cast<WORD>(show_mode);
  return ErrorOf(CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, FALSE, 0, nullptr,
                                nullptr, &start, &process));
}

SystemError WaitFor(HANDLE process, std::int32_t& exit_code) {
  if (WaitForSingleObject(process, INFINITE) == WAIT_FAILED) return GetLastError();
  DWORD code = 0;
  if (!GetExitCodeProcess(process, &code)) return GetLastError();
  exit_code = static_cast<std::int32_t>(code);
  return 0;
}

bool HasZeroUnit(std::span<const std::u16string> arguments) {
  return std::any_of(arguments.begin(), arguments.end(), [](const std::u16string& argument) {
    return argument.find(u'\0') != argument.npos;
  });
}

struct OldVersion {
  DWORD platform, major, minor;
};
// In the order of their codes, from 1.
constexpr std::array kOldVersions = {
    OldVersion{VER_PLATFORM_WIN32_WINDOWS, 4, 0}, OldVersion{VER_PLATFORM_WIN32_WINDOWS, 4, 10},
    OldVersion{VER_PLATFORM_WIN32_NT, 4, 0},      OldVersion{VER_PLATFORM_WIN32_NT, 5, 0},
    OldVersion{VER_PLATFORM_WIN32_NT, 5, 1},      OldVersion{VER_PLATFORM_WIN32_NT, 5, 2},
};

}  // namespace

std::u16string ProgramPath() {
  std::vector<wchar_t> buffer(kLongestPath);
  return FromWide({buffer.data(), GetModuleFileNameW(nullptr, buffer.data(), kLongestPath)});
}

SystemError StartProgram(std::u16string_view path, std::span<const std::u16string> arguments,
                         int show_mode, ProcessWait wait, std::int32_t& exit_code) {
  if (HasZeroUnit(arguments)) return ERROR_INVALID_PARAMETER;
  const std::wstring program = SystemPath(path);
  PROCESS_INFORMATION process{};
  SystemError error = Create(program, CommandLine(program, arguments), show_mode, process);
  if (error != 0) return error;
  CloseHandle(process.hThread);
  if (wait == ProcessWait::kUntilEnd) error = WaitFor(process.hProcess, exit_code);
  CloseHandle(process.hProcess);
  return error;
}

// Newer systems report at least 6, whatever the program's manifest says.
int SystemVersionCode() {
  OSVERSIONINFOW info{};
  info.dwOSVersionInfoSize = sizeof info;
  if (!GetVersionExW(&info)) return 0;
  const auto* found =
      std::find_if(kOldVersions.begin(), kOldVersions.end(), [&](const OldVersion& version) {
        return version.platform == info.dwPlatformId && version.major == info.dwMajorVersion &&
               version.minor == info.dwMinorVersion;
      });
  return found != kOldVersions.end() ? static_cast<int>(found - kOldVersions.begin()) + 1 : 0;
}

}  // namespace zentavo::platform
