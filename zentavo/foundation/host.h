// What the library asks of the program and the system it runs in.
#pragma once

#include <cstdint>

#include "zentavo/framework/text.h"
#include "zentavo/platform/window_messages.h"

namespace zentavo {

// The window to which a batch executor wants error texts delivered; 0 when there is none. Set by
// the host; not synchronised.
extern ZENTAVO_API platform::WindowHandle XBatchExecHND;

// 1 to 6 for the six older Windows versions, 0 for newer and unknown ones and other systems.
ZENTAVO_API int GetWinVersion();

// The folder of the running program, with a path separator at its end.
ZENTAVO_API String GetProgramDir();

// Starts `FileName` with `Parameter` as its one argument (none when it is empty). With `Wait` the
// call returns when the program has ended. Returns whether it started. `ShowMode` is the window's
// show mode (5: shown).
ZENTAVO_API bool ExecuteProgram(StringView FileName, StringView Parameter, int ShowMode, bool Wait);

}  // namespace zentavo
