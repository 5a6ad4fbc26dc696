// Names of files and directories, and the directories themselves.
// All functions may be called from any thread.
#pragma once

#include "zentavo/framework/text.h"

namespace zentavo {

// The part up to and including the last path delimiter; empty when there is none.
ZENTAVO_API String ExtractFilePath(StringView file_name);
// What follows it.
ZENTAVO_API String ExtractFileName(StringView file_name);
// The last '.' of the file name and what follows it; empty when there is none.
ZENTAVO_API String ExtractFileExt(StringView file_name);
ZENTAVO_API String ChangeFileExt(StringView file_name, StringView extension);
ZENTAVO_API String IncludeTrailingPathDelimiter(StringView path);
ZENTAVO_API String ExcludeTrailingPathDelimiter(StringView path);

ZENTAVO_API bool FileExists(StringView file_name);
ZENTAVO_API bool DirectoryExists(StringView path);
// Creates `path` with all its missing parents. Returns whether it exists afterwards; raises
// EInOutError "Unable to create directory" for the empty path.
ZENTAVO_API bool ForceDirectories(StringView path);

}  // namespace zentavo
