#include "zentavo/genlib/event_log.h"

#include "zentavo/platform/event_log.h"

namespace zentavo {

void WriteToWindowsEventLog(std::int32_t EventId, StringView Message, std::int32_t EventType) {
  constexpr std::uint16_t kCategory = 1000;
  platform::ReportSystemEvent(u"Zentavo", {static_cast<std::uint16_t>(EventType), kCategory,
                                           static_cast<std::uint32_t>(EventId), Message});
}

}  // namespace zentavo
