#include "zentavo/platform/console.h"

#include <unistd.h>

namespace zentavo::platform {

std::vector<std::string> ProgramArguments(int argc, const char* const* argv) {
  if (argc < 1) return {};
  return {argv + 1, argv + argc};
}

void SetBinaryStandardStreams() {}

bool StandardErrorIsTerminal() {
  return isatty(STDERR_FILENO) == 1;
}

}  // namespace zentavo::platform
