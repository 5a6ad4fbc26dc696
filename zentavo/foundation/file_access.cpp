#include "zentavo/foundation/file_access.h"

#include "zentavo/foundation/host.h"
#include "zentavo/framework/file_names.h"
#include "zentavo/platform/directories.h"

namespace zentavo {

namespace {

constexpr int kShowNormal = 5;
constexpr int kNewestOldWindows = 6;

bool SystemHasAccessLists() {
  const int version = GetWinVersion();
  return version < 1 || version > kNewestOldWindows;
}

void GrantByHelperProgram(StringView directory) {
  const String program = GetProgramDir() + u"Access.exe";
  if (FileExists(program)) ExecuteProgram(program, directory, kShowNormal, true);
}

constinit bool access_was_granted = false;

}  // namespace

bool ForceDirFullAccess(StringView Dir) {
  if (!ForceDirectories(Dir)) return false;
  if (SystemHasAccessLists() && !access_was_granted) {
    if (!platform::GrantFullAccess(Dir)) GrantByHelperProgram(Dir);
    access_was_granted = true;
  }
  return true;
}

}  // namespace zentavo
