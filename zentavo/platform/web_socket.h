// WebSocket channels (RFC 6455), the client's side: WinHTTP's own functions on Windows, Boost.Beast
// over libcurl's connections on Linux.
//
// A channel is opened on the server of an HTTP connection, by the session's proxy, TLS and time-out
// settings. Pings are answered while receiving. Errors are WinHTTP's codes on both platforms:
//
//   12002  the time-out passed          12007  the name has no address
//   12029  nobody answers there         12030  the connection broke
//   12152  the server does not keep to the protocol, or refuses the handshake
//   12175  TLS or its certificate       4317   the channel is closed
//
// After an error, a time-out included, the channel is over, and every operation returns 4317. A
// channel is used by one thread at a time.
#pragma once

#include "zentavo/platform/http.h"

namespace zentavo::platform {

inline constexpr SystemError kWebSocketClosed = 4317;
inline constexpr SystemError kWebSocketUnsupported = 120;  // the system has no WebSockets

// What one call of Receive brought.
struct WebSocketPiece {
  std::size_t count = 0;  // bytes
  bool is_text = false;
  bool is_last = false;   // of its message
  bool is_close = false;  // the peer closed, see PeerClose; no bytes
};

// The status of a close frame, and its reason in UTF-8. Status 0: there was none yet; 1005: one
// without a status.
struct WebSocketClose {
  std::uint16_t status = 0;
  std::string reason;
};

class ZENTAVO_API WebSocket {
 public:
  // Shakes hands for `path` (ASCII without control characters and blanks). Null with an `error`
  // when that fails; `answer` is the status of the server's answer, 0 without one.
  static std::unique_ptr<WebSocket> Open(const HttpConnection& connection, std::u16string_view path,
                                         std::uint32_t& answer, SystemError& error);
  WebSocket(const WebSocket&) = delete;
  WebSocket& operator=(const WebSocket&) = delete;
  ~WebSocket();  // without a closing handshake

  // Sends one binary message. The send time-out counts from the last progress.
  SystemError Send(std::span<const std::byte> message);
  // Waits for the next bytes of a message, or its end, for the receive time-out at most, whatever
  // else the server sends meanwhile. `buffer` is not empty.
  SystemError Receive(std::span<std::byte> buffer, WebSocketPiece& piece);
  // Sends a close frame and waits, up to ten seconds, and no longer than the receive time-out,
  // for the peer's. Does nothing when the peer closed before.
  SystemError Close(std::uint16_t status);
  // Ends the channel with a close frame and waits for nothing.
  void Abandon(std::uint16_t status);
  const WebSocketClose& PeerClose() const;

 private:
  struct State;
  explicit WebSocket(std::unique_ptr<State> state);

  std::unique_ptr<State> state_;
};

// Windows: looks the system's WebSocket functions up in `library`, once for the process; the unit's
// start-up names "winhttp.dll". What is missing there makes Open fail with kWebSocketUnsupported.
// Returns whether all are there. Linux: does nothing, they are built in; true.
ZENTAVO_API bool LookUpWebSocketFunctions(const char16_t* library);

}  // namespace zentavo::platform
