#include "zentavo/platform/console.h"

#include "zentavo/platform/windows/wide.h"

#include <fcntl.h>
#include <io.h>
#include <shellapi.h>

#include <cstdio>
#include <memory>

#include "zentavo/platform/code_pages.h"

namespace zentavo::platform {

namespace {

struct FreeLocal {
  void operator()(wchar_t** memory) const { LocalFree(memory); }
};

}  // namespace

std::vector<std::string> ProgramArguments(int, const char* const*) {
  int count = 0;
  const std::unique_ptr<wchar_t*, FreeLocal> arguments(
      CommandLineToArgvW(GetCommandLineW(), &count));
  std::vector<std::string> result;
  for (int i = 1; i < count && arguments != nullptr; ++i) {
    result.push_back(*EncodeCodePage(FromWide(arguments.get()[i]), kCodePageUtf8));
  }
  return result;
}

void SetBinaryStandardStreams() {
  for (std::FILE* stream : {stdin, stdout, stderr}) _setmode(_fileno(stream), _O_BINARY);
}

bool StandardErrorIsTerminal() {
  DWORD mode = 0;
  return GetConsoleMode(GetStdHandle(STD_ERROR_HANDLE), &mode) != 0;
}

}  // namespace zentavo::platform
