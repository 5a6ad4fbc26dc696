// The running program, and the start of other programs. All functions may be called from any
// thread.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "zentavo/platform/export.h"
#include "zentavo/platform/system_error.h"

namespace zentavo::platform {

// The full path of the running program's file.
ZENTAVO_API std::u16string ProgramPath();

enum class ProcessWait { kNoWait, kUntilEnd };

// Starts the program `path` with `arguments` (each reaches the program as one argument, whatever is
// in it; a zero unit is refused; a Windows batch file reads its arguments by rules of its own).
// `path` is not searched for. `show_mode` is the system's window show mode, ignored where there are
// no windows. With kUntilEnd, returns after the program has ended and sets `exit_code`; a program
// ended by a signal counts as 128 + the signal. Returns 0 or the system's error code when the
// program did not start. A program that is not waited for leaves no zombie.
ZENTAVO_API SystemError StartProgram(std::u16string_view path,
                                     std::span<const std::u16string> arguments, int show_mode,
                                     ProcessWait wait, std::int32_t& exit_code);

// The running system's version: 1 to 6 for the six older Windows versions (95, 98, NT 4, 2000, XP,
// 2003), 0 for newer and unknown ones and on Linux.
ZENTAVO_API int SystemVersionCode();

}  // namespace zentavo::platform
