#include "zentavo/platform/event_log.h"

#include "zentavo/platform/windows/wide.h"

namespace zentavo::platform {

void ReportSystemEvent(std::u16string_view source, const SystemEvent& event,
                       std::u16string_view log) {
  const std::wstring computer = ToWide(log);
  const HANDLE opened =
      RegisterEventSourceW(computer.empty() ? nullptr : computer.c_str(), ToWide(source).c_str());
  if (opened == nullptr) return;
  const std::wstring message = ToWide(event.message);
  const wchar_t* strings[] = {message.c_str()};
  ReportEventW(opened, event.type, event.category, event.id, nullptr, 1, 0, strings, nullptr);
  DeregisterEventSource(opened);
}

}  // namespace zentavo::platform
