#include "zentavo/platform/windows/web_socket_functions.h"

#include "zentavo/platform/web_socket.h"
#include "zentavo/platform/windows/wide.h"

namespace zentavo::platform {

namespace {

constinit WebSocketFunctions functions;

template <typename Function>
void LookUp(HMODULE library, const char* name, Function& function) {
  function = reinterpret_cast<Function>(
      reinterpret_cast<void*>(library != nullptr ? GetProcAddress(library, name) : nullptr));
}

}  // namespace

bool WebSocketFunctions::Complete() const {
  return complete_upgrade != nullptr && send != nullptr && receive != nullptr &&
         shutdown != nullptr && close != nullptr && query_close_status != nullptr;
}

const WebSocketFunctions& SystemWebSockets() {
  return functions;
}

// The library is loaded already: HTTP requests are linked against it.
bool LookUpWebSocketFunctions(const char16_t* library) {
  const HMODULE module = GetModuleHandleW(AsWide(library));
  LookUp(module, "WinHttpWebSocketCompleteUpgrade", functions.complete_upgrade);
  LookUp(module, "WinHttpWebSocketSend", functions.send);
  LookUp(module, "WinHttpWebSocketReceive", functions.receive);
  LookUp(module, "WinHttpWebSocketShutdown", functions.shutdown);
  LookUp(module, "WinHttpWebSocketClose", functions.close);
  LookUp(module, "WinHttpWebSocketQueryCloseStatus", functions.query_close_status);
  return functions.Complete();
}

}  // namespace zentavo::platform
