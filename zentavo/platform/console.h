// The program's arguments and standard streams, for command-line programs.
#pragma once

#include <string>
#include <vector>

#include "zentavo/platform/export.h"

namespace zentavo::platform {

// Returns the arguments behind the program's name as UTF-8. Takes what `main` was given; where that
// is in a code page, asks the system instead.
ZENTAVO_API std::vector<std::string> ProgramArguments(int argc, const char* const* argv);

// Lets the standard streams of C pass every byte unchanged, line breaks included. Call it before
// the first input or output.
ZENTAVO_API void SetBinaryStandardStreams();

// Whether a person reads what the program writes to standard error.
ZENTAVO_API bool StandardErrorIsTerminal();

}  // namespace zentavo::platform
