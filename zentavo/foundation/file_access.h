// Directories that every user of the machine may write to.
#pragma once

#include "zentavo/framework/text.h"

namespace zentavo {

// Creates `Dir` with all its missing parents and returns whether it exists then.
//
// The first directory created so in the process also gets full access for every authenticated user;
// later calls only create, which callers rely on. A grant that fails is handed to the program
// "Access.exe" beside the running one, where that exists, and never changes the result. The
// once-flag is not locked.
ZENTAVO_API bool ForceDirFullAccess(StringView Dir);

}  // namespace zentavo
