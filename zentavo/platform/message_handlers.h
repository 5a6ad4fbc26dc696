// The handlers of the open message windows, by window handle.
// All functions may be called from any thread.
#pragma once

#include <memory>

#include "zentavo/platform/window_messages.h"

namespace zentavo::platform {

void AddMessageHandler(WindowHandle window, MessageHandler handler);
void RemoveMessageHandler(WindowHandle window);

// Returns the window's handler, null when it has none. It stays alive while the result is held, so
// a handler may close its own window.
std::shared_ptr<const MessageHandler> FindMessageHandler(WindowHandle window);

}  // namespace zentavo::platform
