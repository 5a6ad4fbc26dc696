// A WebSocket server that does what a test tells it to, right or wrong.
//
//   WebSocketServer server([](WebSocketPeer& peer) {
//     if (!peer.ShakeHands()) return;
//     peer.Send(Frame(kText, "one") + Frame(kPing, "?"));
//     peer.AnswerUntilClosed();
//   });
//   channel.Open(server.Url(u"/path"));
#pragma once

#include <atomic>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>

#include "tests/support/sockets.h"
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

// The value of a header in a request's text; empty without one.
std::string HeaderOf(std::string_view request, std::string_view name);

struct ReceivedFrame {
  unsigned first_byte = 0;
  bool masked = false;
  std::string payload;
};

// The server's side of one connection. End may be called from any thread.
class WebSocketPeer {
 public:
  explicit WebSocketPeer(Socket socket) : socket_(std::move(socket)) {}

  // Reads up to the empty line, or until the client is gone.
  std::string ReadRequest();
  // Reads the request and accepts it; false when the client is gone.
  bool ShakeHands();
  bool Send(std::string_view bytes) { return !ended_ && socket_.Send(bytes); }
  // `count` bytes, fewer when the client is gone.
  std::string Receive(std::size_t count);
  // Returns false when the client is gone.
  bool ReadFrame(ReceivedFrame& frame);
  // Answers a close frame, with `echo` data frames too, until the client is gone.
  void AnswerUntilClosed(bool echo = false);
  // Tells the client that no more comes.
  void EndSending() { socket_.Shutdown(kShutSend); }
  // Reads and forgets until the client is gone.
  void Drain();
  // Sends a reset instead of an orderly end.
  void Reset();
  // Ends sending and receiving; for other threads too.
  void End();

 private:
  bool WaitForBytes();

  Socket socket_;
  std::mutex closing_;
  std::atomic<bool> ended_{false};
};

// Runs `script` for each connection, one after the other, on a thread of its own.
class WebSocketServer {
 public:
  using Script = std::function<void(WebSocketPeer&)>;

  explicit WebSocketServer(Script script);
  ~WebSocketServer();
  WebSocketServer(const WebSocketServer&) = delete;
  WebSocketServer& operator=(const WebSocketServer&) = delete;

  std::uint16_t Port() const { return listener_.Port(); }
  String Url(StringView path = u"/") const;
  // Ends the current connection and the thread.
  void Stop();

 private:
  void Run();

  const Script script_;
  Listener listener_;
  std::atomic<bool> stopping_{false};
  std::mutex mutex_;                  // guards `current_` against Stop
  WebSocketPeer* current_ = nullptr;  // the one that the script talks to
  std::thread thread_;
};

}  // namespace zentavo::testing
