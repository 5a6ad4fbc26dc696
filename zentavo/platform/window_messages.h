// Synchronous messages to a window of another part of the program.
//
// Windows has the system's windows. Linux has none: there a host registers a call-back under a
// handle, and a message to that handle calls it on the sender's thread.
// All functions may be called from any thread.
#pragma once

#include <cstdint>
#include <functional>

#include "zentavo/platform/export.h"

namespace zentavo::platform {

using WindowHandle = std::uintptr_t;  // 0: no window
using MessageHandler = std::function<std::intptr_t(std::uint32_t message, std::uintptr_t wparam,
                                                   std::intptr_t lparam)>;

// Sends the message and waits for its answer; 0 when there is no such window.
ZENTAVO_API std::intptr_t SendWindowMessage(WindowHandle window, std::uint32_t message,
                                            std::uintptr_t wparam, std::intptr_t lparam);

// Opens a message-only window that passes each message to `handler`, and closes it again. On
// Windows the handler is called on the thread that opened the window, which must close it too. The
// handler may send messages and close its own window; it must not throw. Opening returns 0 when the
// system refuses.
ZENTAVO_API WindowHandle OpenMessageWindow(MessageHandler handler);
ZENTAVO_API void CloseMessageWindow(WindowHandle window);

}  // namespace zentavo::platform
