#include "zentavo/http/web_socket_connection.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <string>
#include <vector>

#include "tests/http/http_asks.h"
#include "tests/support/environment.h"
#include "tests/support/latch.h"
#include "tests/support/tls_front.h"
#include "tests/support/web_socket_server.h"
#include "tests/support/wine.h"
#include "zentavo/framework/number_text.h"

namespace zentavo::testing {
namespace {

using namespace std::string_literals;

constexpr std::int32_t kPatience = 20000;  // milliseconds; no test waits so long
constexpr std::int32_t kHaste = 1000;      // where a time-out is expected behind a handshake

// What the client receives until the end: messages in brackets, then how it ended.
std::string Received(TWebSocketConnection& channel) {
  std::string text;
  TMemoryStream message;
  while (channel.ReceiveMsg(message)) text.append("[").append(BytesOf(message)).append("]");
  if (channel.LastError() == 0) {
    const String close = IntToStr(channel.CloseStatus()) + u" " + channel.CloseReason();
    return text.append("close ").append(ToUtf8(close));
  }
  if (message.Size() != 0) text.append("(").append(BytesOf(message)).append(")");
  return text.append("error ").append(std::to_string(channel.LastError()));
}

// A channel to a server that accepts the handshake and then runs `script`.
class Session {
 public:
  explicit Session(WebSocketServer::Script script, std::int32_t receive_ms = kPatience)
      : server_([script](WebSocketPeer& peer) {
          if (peer.ShakeHands()) script(peer);
        }) {
    channel.SetTimeouts(receive_ms, kPatience);
    channel.Open(server_.Url());
    EXPECT_EQ(channel.LastError(), 0u);
  }

 private:
  WebSocketServer server_;

 public:
  TWebSocketConnection channel;  // closed before the server ends
};

// From one place in a stream of frames to the next; a session takes Wine a tenth of a second.
const std::size_t kStep = RunsUnderWine() ? 11 : 1;

// Wine's functions tell no broken connection from a broken protocol.
std::string AsTheSystemSays(std::string received) {
  const std::size_t at = RunsUnderWine() ? received.find("error 12030") : received.npos;
  return at == received.npos ? received : received.replace(at, 11, "error 12152");
}

// The frames that are sent at once, with an orderly end of the connection behind them.
std::string ReceivedOf(const std::string& bytes) {
  Session session([bytes](WebSocketPeer& peer) {
    peer.Send(bytes);
    peer.EndSending();
    peer.Drain();
  });
  return Received(session.channel);
}

enum class Under { kAll, kNotWine };  // Wine's own functions take what they should refuse

struct FrameRow {
  const char* name;
  std::string bytes, received;
  Under under = Under::kAll;
};

TEST(WebSocket, ReceivesWhatTheServerSends) {
  const std::string close = CloseFrame(1000);
  const FrameRow rows[] = {
      {"one binary", Frame(kBinary, "ab\0c"s) + close, "[ab\0c]close 1000 "s},
      {"text and empty", Frame(kText, "\xCE\xB1") + Frame(kText, "") + close,
       "[\xCE\xB1][]close 1000 "},
      {"fragments",
       Frame(kText, "a", 0) + Frame(kContinuation, "b", 0) + Frame(kContinuation, "c") + close,
       "[abc]close 1000 "},
      {"character over fragments", Frame(kText, "\xCE", 0) + Frame(kContinuation, "\xB1") + close,
       "[\xCE\xB1]close 1000 "},
      {"ping between fragments",
       Frame(kBinary, "a", 0) + Frame(kPing, "") + Frame(kContinuation, "b") + close,
       "[ab]close 1000 "},
      {"ping with text, pong",
       Frame(kBinary, "a", 0) + Frame(kPing, "?") + Frame(kPong, "!") + Frame(kContinuation, "b") +
           close,
       "[ab]close 1000 ", Under::kNotWine},
      {"empty fragments",
       Frame(kBinary, "", 0) + Frame(kContinuation, "a", 0) + Frame(kContinuation, "") + close,
       "[a]close 1000 "},
      {"65536 bytes", Frame(kBinary, std::string(65536, 'x')) + close,
       std::string("[").append(65536, 'x').append("]close 1000 ")},
      {"close with a reason", CloseFrame(4001, "b\xC3\xA4"), "close 4001 b\xC3\xA4"},
      {"close without a status", Frame(kClose, ""), "close 1005 "},
      {"close within a message", Frame(kBinary, "a", 0) + CloseFrame(1001), "close 1001 "},
      {"end of the connection", Frame(kBinary, "a"), "[a]error 12030"},
      {"end within a frame", Frame(kBinary, "abc").substr(0, 4), "(ab)error 12030"},
      {"reserved bit", Frame(kBinary, "a", kFin | 0x40), "error 12152", Under::kNotWine},
      {"reserved opcode", Frame(3, "a"), "error 12152", Under::kNotWine},
      {"reserved control opcode", Frame(11, "a"), "error 12152", Under::kNotWine},
      {"masked frame", "\x82\x81mask!"s, "error 12152", Under::kNotWine},
      {"nothing to continue", Frame(kContinuation, "a"), "error 12152", Under::kNotWine},
      {"message within a message", Frame(kText, "a", 0) + Frame(kBinary, "b"), "(a)error 12152",
       Under::kNotWine},
      {"long ping", Frame(kPing, std::string(126, 'p')), "error 12152", Under::kNotWine},
      {"ping in fragments", Frame(kPing, "", 0), "error 12152", Under::kNotWine},
      {"frame that says 2^64 - 1 bytes", "\x82\x7F" + std::string(8, '\xFF'), "error 12030",
       Under::kNotWine},
      {"invalid UTF-8", Frame(kText, "a\xFF"), "error 12152", Under::kNotWine},
      {"surrogate in UTF-8", Frame(kText, "\xED\xA0\x80"), "error 12152", Under::kNotWine},
      {"close of one byte", Frame(kClose, "x"), "error 12152", Under::kNotWine},
      {"close with a reserved status", CloseFrame(1005), "error 12152", Under::kNotWine},
      {"close with invalid UTF-8", CloseFrame(1000, "\xFF"), "error 12152", Under::kNotWine},
  };
  for (const FrameRow& row : rows) {
    if (row.under == Under::kNotWine && RunsUnderWine()) continue;
    SCOPED_TRACE(row.name);
    EXPECT_EQ(ReceivedOf(row.bytes), AsTheSystemSays(row.received));
  }
}

struct HandshakeRow {
  const char* name;
  std::string answer;  // "KEY" stands for the right one
  std::uint32_t error, status;
  Under under = Under::kAll;
};

TEST(WebSocket, HandshakeMustBeRight) {
  const std::string good =
      "HTTP/1.1 101 Switching Protocols\r\nUpgrade: websocket\r\nConnection: keep-alive, "
      "Upgrade\r\n"
      "Sec-WebSocket-Accept: KEY\r\n";
  const HandshakeRow rows[] = {
      {"right", good + "\r\n", 0, 101},
      {"no upgrade", "HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\n\r\n", 12152, 404},
      {"redirect", "HTTP/1.1 302 Found\r\nLocation: /b\r\nContent-Length: 0\r\n\r\n", 12152, 302},
      {"wrong key",
       "HTTP/1.1 101 Yes\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n"
       "Sec-WebSocket-Accept: AAAA\r\n\r\n",
       12152, 101, Under::kNotWine},
      {"no key", "HTTP/1.1 101 Yes\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n\r\n", 12152,
       101, Under::kNotWine},
      {"other upgrade",
       "HTTP/1.1 101 Yes\r\nUpgrade: h2c\r\nConnection: Upgrade\r\n"
       "Sec-WebSocket-Accept: KEY\r\n\r\n",
       12152, 101, Under::kNotWine},
      {"no HTTP", "\x82\x01x, and more of that\r\n\r\n", 12152, 0, Under::kNotWine},
      {"nothing", "", 12030, 0, Under::kNotWine},
      {"endless headers", good + "X: " + std::string(1 << 20, 'x') + "\r\n\r\n", 12152, 101,
       Under::kNotWine},
  };
  for (const HandshakeRow& row : rows) {
    if (row.under == Under::kNotWine && RunsUnderWine()) continue;
    SCOPED_TRACE(row.name);
    WebSocketServer server([&row](WebSocketPeer& peer) {
      const std::string key = AcceptKey(peer.ReadRequest().Header("Sec-WebSocket-Key"));
      std::string answer = row.answer;
      if (const std::size_t at = answer.find("KEY"); at != answer.npos) answer.replace(at, 3, key);
      peer.Send(answer);
      peer.EndSending();
      peer.Drain();
    });
    TWebSocketConnection channel;
    EXPECT_EQ(channel.Open(server.Url()), row.error == 0);
    EXPECT_EQ(channel.LastError(), row.error);
    EXPECT_EQ(channel.LastStatus(), row.status);
    EXPECT_EQ(channel.IsOpen(), row.error == 0);
  }
}

TEST(WebSocket, AsksForTheUpgrade) {
  std::vector<ReceivedRequest> requests;
  WebSocketServer server([&](WebSocketPeer& peer) { requests.push_back(peer.ReadRequest()); });
  for (int i = 0; i < 2; ++i) TWebSocketConnection().Open(server.Url(u"/a/b?c=%20d"));
  server.Stop();
  ASSERT_EQ(requests.size(), 2u);
  const ReceivedRequest& request = requests[0];
  EXPECT_EQ(request.line, "GET /a/b?c=%20d HTTP/1.1");
  EXPECT_EQ(request.Header("Host"), "127.0.0.1:" + std::to_string(server.Port()));
  EXPECT_EQ(request.Header("User-Agent"), "Zentavo");
  EXPECT_EQ(request.Header("Upgrade"), "websocket");
  EXPECT_EQ(request.Header("Sec-WebSocket-Version"), "13");
  EXPECT_EQ(request.Header("Sec-WebSocket-Key").size(), 24u);
  EXPECT_NE(request.Header("Sec-WebSocket-Key"), requests[1].Header("Sec-WebSocket-Key"));
}

TEST(WebSocket, SendsMaskedBinaryMessagesAndReceivesThemBack) {
  std::vector<ReceivedFrame> frames;
  Session session([&](WebSocketPeer& peer) {
    ReceivedFrame frame;
    while (peer.ReadFrame(frame)) {
      frames.push_back(frame);
      peer.Send(Frame(frame.first_byte & 15, frame.payload));
    }
  });
  std::vector<std::string> messages;
  TMemoryStream stream;
  for (const std::size_t size : {0, 1, 125, 126, 65535, 65536, 1 << 20}) {
    messages.emplace_back(size, static_cast<char>('a' + messages.size()));
    ASSERT_TRUE(session.channel.SendMsg(messages.back()));
    ASSERT_TRUE(session.channel.ReceiveMsg(stream));
    EXPECT_EQ(BytesOf(stream), messages.back());
  }
  ASSERT_TRUE(session.channel.SendMsg(stream));
  ASSERT_TRUE(session.channel.SendMsg("xyz", 2));
  messages.insert(messages.end(), {messages.back(), "xy"});
  ASSERT_TRUE(session.channel.ReceiveMsg(stream) && session.channel.ReceiveMsg(stream));
  session.channel.Close();
  EXPECT_EQ(session.channel.LastError(), 0u);
  EXPECT_EQ(session.channel.CloseStatus(), 1000);
  ASSERT_EQ(frames.size(), messages.size() + 1);
  for (std::size_t i = 0; i < frames.size(); ++i) {
    const bool is_close = i == messages.size();
    EXPECT_TRUE(frames[i].masked);
    EXPECT_EQ(frames[i].first_byte, kFin | (is_close ? kClose : kBinary));
    EXPECT_TRUE(frames[i].payload == (is_close ? "\x03\xE8" : messages[i])) << i;
  }
}

TEST(WebSocket, AnswersPingsWhileReceiving) {
  const std::string text = RunsUnderWine() ? "" : "still there?";
  ReceivedFrame answer;
  Session session([&](WebSocketPeer& peer) {
    peer.Send(Frame(kPing, text));
    peer.ReadFrame(answer);
    peer.Send(Frame(kText, "after"));
    peer.AnswerUntilClosed();
  });
  TMemoryStream stream;
  ASSERT_TRUE(session.channel.ReceiveMsg(stream));
  EXPECT_EQ(BytesOf(stream), "after");
  EXPECT_EQ(answer.first_byte, kFin | kPong);
  EXPECT_EQ(answer.payload, text);
}

TEST(WebSocket, MessageOf1300BytesGrowsTheStreamThreeTimesBy512) {
  Session session([](WebSocketPeer& peer) {
    for (const std::size_t size : {1300, 1536, 1537, 3}) {
      peer.Send(Frame(kBinary, std::string(size, 'x')));
    }
    peer.AnswerUntilClosed();
  });
  TMemoryStream stream;
  for (const std::int64_t capacity : {1536, 1536, 2048, 2048}) {
    ASSERT_TRUE(session.channel.ReceiveMsg(stream));
    EXPECT_EQ(stream.Capacity(), capacity);
  }
  EXPECT_EQ(BytesOf(stream), "xxx");
}

TEST(WebSocket, MessageBeyondTheLimitIsRefused) {
  for (const std::size_t beyond : {0, 1, 5000}) {
    SCOPED_TRACE(beyond);
    Session session([beyond](WebSocketPeer& peer) {
      peer.Send(Frame(kBinary, std::string(600, 'x'), 0));
      peer.Send(Frame(kContinuation, std::string(400 + beyond, 'x')));
      peer.AnswerUntilClosed();
    });
    session.channel.SetMaxMessage(1000);
    TMemoryStream stream;
    EXPECT_EQ(session.channel.ReceiveMsg(stream), beyond == 0);
    EXPECT_EQ(session.channel.LastError(), beyond == 0 ? 0u : 12184u);
    EXPECT_EQ(stream.Size(), 1000);
    EXPECT_EQ(session.channel.SendMsg(stream), beyond == 0);
    EXPECT_EQ(session.channel.LastError(), beyond == 0 ? 0u : 4317u);
  }
}

TEST(WebSocket, EmptyMessagesDoNotKeepAReceiverOfBytes) {
  WebSocketServer server([](WebSocketPeer& peer) {
    bool going = peer.ShakeHands();
    while (going) going = peer.Send(Frame(kBinary, ""));
  });
  OwnConnection connection(server.Url());
  connection.InitWebSocket(connection.path);
  char byte = 0;
  EXPECT_FALSE(connection.ReceiveSocketBytes(&byte, 1));
  EXPECT_EQ(connection.LastError(), 12152u);
}

TEST(WebSocket, ReceivesBytesAcrossMessages) {
  WebSocketServer server([](WebSocketPeer& peer) {
    if (!peer.ShakeHands()) return;
    peer.Send(Frame(kBinary, "ab") + Frame(kBinary, "") + Frame(kText, "cdef") + CloseFrame(1001));
    peer.AnswerUntilClosed();
  });
  OwnConnection connection(server.Url());
  connection.InitWebSocket(connection.path);
  std::string bytes(3, ' ');
  ASSERT_TRUE(connection.ReceiveSocketBytes(bytes.data(), 3));
  EXPECT_EQ(bytes, "abc");
  TMemoryStream rest;
  ASSERT_TRUE(connection.ReceiveSocketMsg(rest));
  EXPECT_EQ(BytesOf(rest), "def");
  EXPECT_FALSE(connection.ReceiveSocketBytes(bytes.data(), 1));
  EXPECT_EQ(connection.LastError(), 0u);
  EXPECT_EQ(connection.SocketCloseStatus(), 1001);
  EXPECT_FALSE(connection.ReceiveSocketBytes(bytes.data(), 1));
  EXPECT_EQ(connection.LastError(), 4317u);
  connection.CloseWebSocket();
  EXPECT_EQ(connection.LastError(), 0u);
}

TEST(WebSocket, OperationsWithoutAChannelRecordErrors) {
  TWebSocketConnection channel;
  TMemoryStream stream;
  channel.Close();
  EXPECT_EQ(channel.LastError(), 0u);
  EXPECT_FALSE(channel.ReceiveMsg(stream));
  EXPECT_EQ(channel.LastError(), 6u);
  EXPECT_THROW(channel.Open(u"nowhere"), EZentavoError);
  std::uint16_t port = 0;
  { port = Listener().Port(); }
  EXPECT_FALSE(channel.Open(u"ws://127.0.0.1:" + IntToStr(port)));
  EXPECT_EQ(channel.LastError(), 12029u);
  EXPECT_FALSE(channel.SendMsg(AnsiString("a")));
  EXPECT_EQ(channel.LastError(), 6u);
  THTTPConnection connection;
  connection.InitWebSocket(u"/");
  EXPECT_EQ(connection.LastError(), 6u);
  connection.OpenConnection(u"127.0.0.1", false, port);
  connection.InitWebSocket(u"/a\r\nb: c");
  EXPECT_EQ(connection.LastError(), 87u);
}

// The server resets the connection behind each byte of its answer.
TEST(WebSocket, ResetAtEachByteIsAnError) {
  const std::string frames = Frame(kBinary, std::string(130, 'x')) + Frame(kPing, "") +
                             Frame(kText, "abc", 0) + Frame(kContinuation, "d") + CloseFrame(1000);
  std::atomic<std::size_t> sent{0};
  WebSocketServer server([&](WebSocketPeer& peer) {
    const std::string key = AcceptKey(peer.ReadRequest().Header("Sec-WebSocket-Key"));
    const std::string all = SwitchingProtocols(key) + frames;
    if (sent > all.size()) return;
    peer.Send(std::string_view(all).substr(0, sent));
    peer.Reset();
  });
  const std::size_t handshake = SwitchingProtocols(AcceptKey("")).size();
  // Wine's own reader of headers crashes when they break off.
  for (sent = RunsUnderWine() ? handshake : 0; sent <= handshake + frames.size(); sent += kStep) {
    TWebSocketConnection channel;
    channel.SetTimeouts(kPatience, kPatience);
    const std::string received = channel.Open(server.Url()) ? Received(channel) : "";
    const bool ended = received.find("close 1000") != received.npos;
    const std::uint32_t error = channel.LastError();
    EXPECT_TRUE(error == 12030 || error == 12152 || (error == 0 && ended))
        << sent.load() << ": " << error << " " << received;
  }
}

// The same messages whichever way they are cut for the network.
TEST(WebSocket, FramesArriveInAnyPieces) {
  const std::string frames = Frame(kBinary, std::string(126, 'x')) + Frame(kPing, "") +
                             Frame(kText, "abc", 0) + Frame(kContinuation, "d") + CloseFrame(1000);
  const std::string expected = "[" + std::string(126, 'x') + "][abcd]close 1000 ";
  for (std::size_t cut = 1; cut < frames.size(); cut += kStep) {
    Session session([&](WebSocketPeer& peer) {
      peer.Send(frames.substr(0, cut));
      peer.Send(frames.substr(cut));
      peer.AnswerUntilClosed();
    });
    ASSERT_EQ(Received(session.channel), expected) << cut;
  }
}

struct TimeoutRow {
  const char* name;
  void (*serve)(WebSocketPeer& peer);
  Under under = Under::kAll;
};

TEST(WebSocket, ReceivingEndsInTimeWhateverTheServerDoes) {
  const TimeoutRow rows[] = {
      {"nothing", [](WebSocketPeer& peer) { peer.Drain(); }},
      {"half a frame",
       [](WebSocketPeer& peer) {
         peer.Send("\x82");
         peer.Drain();
       }},
      {"pings",
       [](WebSocketPeer& peer) {
         while (peer.Send(Frame(kPing, ""))) peer.Receive(6);
       }},
      {"empty fragments",
       [](WebSocketPeer& peer) {
         peer.Send(Frame(kBinary, "", 0));
         for (int i = 0; i < 900; ++i) peer.Send(Frame(kContinuation, "", 0));
         peer.Drain();
       }},
  };
  for (const TimeoutRow& row : rows) {
    SCOPED_TRACE(row.name);
    Session session(row.serve, kHaste);
    EXPECT_EQ(Received(session.channel), "error 12002");
    EXPECT_FALSE(session.channel.SendMsg(AnsiString("a")));
    EXPECT_EQ(session.channel.LastError(), 4317u);
  }
}

TEST(WebSocket, HandshakeSendingAndClosingEndInTime) {
  WebSocketServer silent([](WebSocketPeer& peer) { peer.Drain(); });
  TWebSocketConnection channel;
  channel.SetTimeouts(kHaste, kPatience);
  EXPECT_FALSE(channel.Open(silent.Url()));
  EXPECT_EQ(channel.LastError(), 12002u);

  Session unanswered([](WebSocketPeer& peer) { peer.Drain(); }, kHaste);
  unanswered.channel.Close();
  EXPECT_EQ(unanswered.channel.LastError(), 12002u);
  EXPECT_FALSE(unanswered.channel.IsOpen());

  Latch done(1);
  WebSocketServer deaf([&](WebSocketPeer& peer) {
    if (peer.ShakeHands()) done.Wait();
  });
  THTTPConnection::HttpCallTimeouts(kPatience, kHaste, kPatience);
  THTTPConnection connection(true);
  THTTPConnection::HttpCallTimeouts(60000, 30001, 30000);
  String path;
  connection.OpenConnectionFromUrl(deaf.Url(), path);
  connection.InitWebSocket(path);
  EXPECT_FALSE(connection.SendSocketMsg(std::string(32 << 20, 'x')));
  EXPECT_EQ(connection.LastError(), 12002u);
  done.Arrive();
}

TEST(WebSocket, SystemWithoutTheFunctionsIsRefused) {
  if (platform::LookUpWebSocketFunctions(u"kernel32.dll")) GTEST_SKIP() << "They are built in.";
  TWebSocketConnection channel;
  EXPECT_FALSE(channel.Open(u"ws://127.0.0.1:1/"));
  EXPECT_EQ(channel.LastError(), 120u);
  EXPECT_TRUE(platform::LookUpWebSocketFunctions(u"winhttp.dll"));
}

void ServeEcho(WebSocketPeer& peer) {
  if (peer.ShakeHands()) peer.AnswerUntilClosed(true);
}

TEST(WebSocket, SpeaksTlsToServersItCanTrust) {
  TlsFront* const front = TlsFront::Find();
  if (front == nullptr) GTEST_SKIP() << "tls_front is missing";
  WebSocketServer server(ServeEcho);
  TWebSocketConnection channel;
  const auto open = [&](const char* kind) {
    const String url = front->Url(server.Port(), kind);
    return channel.Open(u"wss" + url.substr(url.find(u':')));
  };
  ASSERT_TRUE(open("good")) << channel.LastError();
  TMemoryStream answer;
  for (const std::size_t size : {1, 4000, 1 << 20}) {
    const std::string message(size, 'x');
    ASSERT_TRUE(channel.SendMsg(message) && channel.ReceiveMsg(answer)) << channel.LastError();
    EXPECT_TRUE(BytesOf(answer) == message) << size;
  }
  channel.Close();
  EXPECT_EQ(channel.LastError(), 0u);
  for (const char* kind : {"expired", "other-host", "stranger", "old"}) {
    EXPECT_FALSE(open(kind));
    EXPECT_EQ(channel.LastError(), 12175u) << kind;
  }
  EXPECT_FALSE(open("client-certificate"));
  // Wine's service does not tell this one apart.
  EXPECT_EQ(channel.LastError(), RunsUnderWine() ? 12175u : 12044u);
}

TEST(WebSocket, TimeOutsHoldOverTls) {
  TlsFront* const front = TlsFront::Find();
  if (front == nullptr) GTEST_SKIP() << "tls_front is missing";
  WebSocketServer server([](WebSocketPeer& peer) {
    if (peer.ShakeHands()) peer.Drain();
  });
  TWebSocketConnection channel;
  channel.SetTimeouts(kHaste, kPatience);
  ASSERT_TRUE(channel.Open(front->Url(server.Port()))) << channel.LastError();
  EXPECT_EQ(Received(channel), "error 12002");
}

TEST(WebSocket, GoesThroughTheProxyOfTheEnvironment) {
  if (kOnWindows) GTEST_SKIP() << "The proxy is the system's there.";
  std::string asked;
  WebSocketServer proxy([&](WebSocketPeer& peer) {
    asked = peer.ReadRequest().line;
    peer.Send("HTTP/1.1 200 Established\r\n\r\n");
    ServeEcho(peer);
  });
  const EnvironmentVariable setting("http_proxy",
                                    "http://127.0.0.1:" + std::to_string(proxy.Port()));
  TWebSocketConnection channel;
  ASSERT_TRUE(channel.Open(u"ws://far.invalid/")) << channel.LastError();
  EXPECT_EQ(asked, "CONNECT far.invalid:80 HTTP/1.1");
  TMemoryStream answer;
  EXPECT_TRUE(channel.SendMsg(AnsiString("through")) && channel.ReceiveMsg(answer));
  EXPECT_EQ(BytesOf(answer), "through");
}

TEST(WebSocket, SecureChannelsAskTheirProxyForATunnel) {
  if (kOnWindows) GTEST_SKIP() << "The proxy is the system's there.";
  std::string asked;
  WebSocketServer proxy([&](WebSocketPeer& peer) {
    asked = peer.ReadRequest().line;
    peer.Send("HTTP/1.1 502 Bad Gateway\r\n\r\n");
  });
  const EnvironmentVariable setting("https_proxy",
                                    "http://127.0.0.1:" + std::to_string(proxy.Port()));
  TWebSocketConnection channel;
  EXPECT_FALSE(channel.Open(u"wss://far.invalid/"));
  EXPECT_EQ(asked, "CONNECT far.invalid:443 HTTP/1.1");
}

TEST(WebSocket, CookiesOfRequestsAreSentAlong) {
  std::vector<std::string> cookies;
  WebSocketServer server([&](WebSocketPeer& peer) {
    const ReceivedRequest request = peer.ReadRequest();
    if (request.line.starts_with("GET /login")) {
      peer.Send(
          "HTTP/1.1 200 OK\r\nSet-Cookie: user=7; Path=/; HttpOnly\r\nSet-Cookie: deep=1; "
          "Path=/chat\r\nSet-Cookie: tls=1; Path=/; Secure\r\nConnection: close\r\n"
          "Content-Length: 0\r\n\r\n");
    } else {
      cookies.push_back(request.Header("Cookie"));
    }
  });
  OwnConnection connection(server.Url(u"/login"));
  ASSERT_TRUE(connection.Ask());
  connection.InitWebSocket(u"/chatter");
  connection.InitWebSocket(u"/chat/room?x=1");
  server.Stop();
  ASSERT_EQ(cookies.size(), 2u);
  if (RunsUnderWine()) {  // whose service sends all cookies everywhere
    EXPECT_NE(cookies[0].find("user=7"), std::string::npos) << cookies[0];
    return;
  }
  EXPECT_EQ(cookies[0], "user=7");
  EXPECT_TRUE(cookies[1] == "user=7; deep=1" || cookies[1] == "deep=1; user=7") << cookies[1];
}

}  // namespace
}  // namespace zentavo::testing
