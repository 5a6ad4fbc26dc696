#include "zentavo/platform/window_messages.h"

#include <atomic>
#include <utility>

#include "zentavo/platform/message_handlers.h"

namespace zentavo::platform {

std::intptr_t SendWindowMessage(WindowHandle window, std::uint32_t message, std::uintptr_t wparam,
                                std::intptr_t lparam) {
  const auto handler = FindMessageHandler(window);
  return handler ? (*handler)(message, wparam, lparam) : 0;
}

WindowHandle OpenMessageWindow(MessageHandler handler) {
  static constinit std::atomic<WindowHandle> last{0};
  const WindowHandle window = ++last;
  AddMessageHandler(window, std::move(handler));
  return window;
}

void CloseMessageWindow(WindowHandle window) {
  RemoveMessageHandler(window);
}

}  // namespace zentavo::platform
