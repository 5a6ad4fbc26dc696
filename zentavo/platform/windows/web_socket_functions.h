// The system's WebSocket functions, looked up by name so that the library loads where they are
// missing.
#pragma once

#include "zentavo/platform/windows/http_state.h"

namespace zentavo::platform {

struct WebSocketFunctions {
  decltype(&WinHttpWebSocketCompleteUpgrade) complete_upgrade = nullptr;
  decltype(&WinHttpWebSocketSend) send = nullptr;
  decltype(&WinHttpWebSocketReceive) receive = nullptr;
  decltype(&WinHttpWebSocketShutdown) shutdown = nullptr;
  decltype(&WinHttpWebSocketClose) close = nullptr;
  decltype(&WinHttpWebSocketQueryCloseStatus) query_close_status = nullptr;

  bool Complete() const;
};

// As the last look-up found them.
const WebSocketFunctions& SystemWebSockets();

}  // namespace zentavo::platform
