#include "zentavo/foundation/host.h"

#include <span>

#include "zentavo/framework/file_names.h"
#include "zentavo/platform/process.h"

namespace zentavo {

constinit platform::WindowHandle XBatchExecHND = 0;

int GetWinVersion() {
  return platform::SystemVersionCode();
}

String GetProgramDir() {
  return ExtractFilePath(platform::ProgramPath());
}

bool ExecuteProgram(StringView FileName, StringView Parameter, int ShowMode, bool Wait) {
  const String parameter(Parameter);
  std::int32_t exit_code = 0;
  return platform::StartProgram(
             FileName, std::span(&parameter, parameter.empty() ? 0u : 1u), ShowMode,
             Wait ? platform::ProcessWait::kUntilEnd : platform::ProcessWait::kNoWait,
             exit_code) == 0;
}

}  // namespace zentavo
