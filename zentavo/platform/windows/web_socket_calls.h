// Blocking calls on a WebSocket handle that end in time.
//
// The system's own time-outs do not hold for every server: one that sends nothing but pings, or
// that never answers a close, keeps a call for ever. So each call runs on the system's pool and
// owns what it uses; when it takes too long it is left behind, and the handle is closed when it
// returns.
#pragma once

#include <vector>

#include "zentavo/platform/web_socket.h"
#include "zentavo/platform/windows/web_socket_functions.h"

namespace zentavo::platform {

struct WebSocketCalls {
  using Call = DWORD (*)(WebSocketCalls& calls);

  WebSocketCalls(std::shared_ptr<HttpConnection::State> of_connection, HINTERNET socket);
  WebSocketCalls(const WebSocketCalls&) = delete;
  WebSocketCalls& operator=(const WebSocketCalls&) = delete;
  ~WebSocketCalls();

  // What the calls read and leave; the caller's own between calls.
  std::vector<std::byte> outgoing;
  std::vector<std::byte> incoming;
  DWORD received = 0;
  WINHTTP_WEB_SOCKET_BUFFER_TYPE type = WINHTTP_WEB_SOCKET_BINARY_MESSAGE_BUFFER_TYPE;
  USHORT close_status = 0;

  const std::shared_ptr<HttpConnection::State> connection;  // kept open
  const InternetHandle handle;
  const HANDLE done;  // an event: the call has returned
  DWORD result = 0;
};
using SharedCalls = std::shared_ptr<WebSocketCalls>;

DWORD SendCall(WebSocketCalls& calls);      // `outgoing`, as a binary message
DWORD ReceiveCall(WebSocketCalls& calls);   // into `incoming`; sets `received` and `type`
DWORD CloseCall(WebSocketCalls& calls);     // with `close_status`
DWORD ShutdownCall(WebSocketCalls& calls);  // likewise, without waiting for the peer

// Returns the call's error, kHttpTimeout when it has not returned within `timeout_ms` (0: without
// end). Then it still runs, and nothing of `calls` may be touched any more.
SystemError RunWithin(std::uint32_t timeout_ms, const SharedCalls& calls,
                      WebSocketCalls::Call call);
// Has the pool make the call; nobody waits for it.
void RunUnattended(const SharedCalls& calls, WebSocketCalls::Call call);

}  // namespace zentavo::platform
