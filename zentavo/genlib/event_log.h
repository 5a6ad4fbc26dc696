// Messages to the operators of a computer, in the system's log.
#pragma once

#include <cstdint>

#include "zentavo/framework/text.h"

namespace zentavo {

// Writes one event of the source "Zentavo", in the category 1000, to this computer's event log
// (Windows) or syslog (Linux). Of `EventType` the low 16 bits count: 1 error, 2 warning,
// 4 information; other values pass through. `Message` ends at its first zero unit.
//
// Raises nothing: where no log can be reached, the call does nothing. May be called from any
// thread.
ZENTAVO_API void WriteToWindowsEventLog(std::int32_t EventId, StringView Message,
                                        std::int32_t EventType);

}  // namespace zentavo
