// Keeps the library's code loaded once the system's threads may call into it.
#pragma once

namespace zentavo::platform {

// From the first call on, the library stays loaded until the process ends.
void PinLibrary();

}  // namespace zentavo::platform
