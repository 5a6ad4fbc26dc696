// Directories: existence, creation, and the full-access grant.
// All functions may be called from any thread.
#pragma once

#include <string>
#include <string_view>

#include "zentavo/platform/export.h"
#include "zentavo/platform/system_error.h"

namespace zentavo::platform {

// The character between the parts of a path: '\' on Windows, '/' on Linux.
ZENTAVO_API char16_t PathSeparator();
// Whether `unit` separates parts of a path: '/' everywhere, and '\' and ':' on Windows.
ZENTAVO_API bool IsPathDelimiter(char16_t unit);

ZENTAVO_API bool DirectoryExists(std::u16string_view path);
// Creates one directory; its parent must exist.
ZENTAVO_API SystemError MakeDirectory(std::u16string_view path);
// Removes an empty directory.
ZENTAVO_API SystemError RemoveEmptyDirectory(std::u16string_view path);
// The folder for temporary files, with a trailing separator.
ZENTAVO_API std::u16string TemporaryDirectory();

// Gives every authenticated user full access to `path` and to what will be created in it. Windows:
// one inheritable entry in the directory's access-control list. Linux: read, write and search for
// all on that directory, with the set-group-ID bit so that new entries inherit the group; a
// symbolic link is refused, never followed. Does nothing when the access is granted already.
// Returns false when the grant failed.
ZENTAVO_API bool GrantFullAccess(std::u16string_view path);

}  // namespace zentavo::platform
