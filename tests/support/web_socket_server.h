// A WebSocket server that does what a test tells it to, right or wrong.
//
//   WebSocketServer server([](WebSocketPeer& peer) {
//     if (!peer.ShakeHands()) return;
//     peer.Send(Frame(kText, "one") + Frame(kPing, "?"));
//     peer.AnswerUntilClosed();
//   });
//   channel.Open(server.Url(u"/path"));
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "tests/support/http_server.h"
#include "zentavo/framework/text.h"

namespace zentavo::testing {

enum Opcode : unsigned {
  kContinuation = 0,
  kText = 1,
  kBinary = 2,
  kClose = 8,
  kPing = 9,
  kPong = 10
};

// The bytes of an unmasked frame. `first_bits` are or'ed to the opcode: kFin, and what is reserved.
inline constexpr unsigned kFin = 0x80;
std::string Frame(unsigned opcode, std::string_view payload, unsigned first_bits = kFin);
std::string CloseFrame(std::uint16_t status, std::string_view reason = {});

// What the server must answer to a handshake with this Sec-WebSocket-Key.
std::string AcceptKey(std::string_view key);

// The answer that accepts a handshake.
std::string SwitchingProtocols(std::string_view accept_key);

struct ReceivedFrame {
  unsigned first_byte = 0;
  bool masked = false;
  std::string payload;
};

// The server's side of one connection.
class WebSocketPeer {
 public:
  explicit WebSocketPeer(HttpPeer& peer) : peer_(peer) {}

  // An empty one when the client is gone.
  ReceivedRequest ReadRequest() { return peer_.ReadHead().value_or(ReceivedRequest()); }
  // Reads the request and accepts it; false when the client is gone.
  bool ShakeHands();
  bool Send(std::string_view bytes) { return peer_.Send(bytes); }
  // `count` bytes, fewer when the client is gone.
  std::string Receive(std::size_t count) { return peer_.Take(count); }
  // Returns false when the client is gone.
  bool ReadFrame(ReceivedFrame& frame);
  // Answers a close frame, with `echo` data frames too, until the client is gone.
  void AnswerUntilClosed(bool echo = false);
  // Tells the client that no more comes.
  void EndSending() { peer_.Channel().Shutdown(kShutSend); }
  // Reads and forgets until the client is gone.
  void Drain() { peer_.AwaitEnd(); }
  // Ends the connection by a reset, behind the script.
  void Reset() { peer_.Channel().ResetAtClose(); }

 private:
  HttpPeer& peer_;
};

// Runs `script` for each connection, one after the other.
class WebSocketServer : public HttpServer {
 public:
  using Script = std::function<void(WebSocketPeer&)>;

  explicit WebSocketServer(Script script);
  String Url(StringView path = u"/") const { return u"ws" + HttpServer::Url(path).substr(4); }
};

}  // namespace zentavo::testing
