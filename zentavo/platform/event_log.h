// The system's log of events: the event log of Windows, syslog on Linux.
#pragma once

#include <cstdint>
#include <string_view>

#include "zentavo/platform/export.h"

namespace zentavo::platform {

struct SystemEvent {
  std::uint16_t type;  // 1 error, 2 warning, 4 information; others pass through
  std::uint16_t category;
  std::uint32_t id;
  std::u16string_view message;
};

// Reports one event of `source`. Does nothing when the log cannot be reached or refuses the event.
// On Linux the type makes the priority; the identifier and the category, and a type that has no
// priority, stand in front of the message, in which control characters become blanks.
//
// `log` is the computer's own when it is empty; else on Windows another computer's name, on Linux
// the path of a logger's socket. May be called from any thread.
ZENTAVO_API void ReportSystemEvent(std::u16string_view source, const SystemEvent& event,
                                   std::u16string_view log = {});

}  // namespace zentavo::platform
