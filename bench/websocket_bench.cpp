// Echoes of 125 bytes and 1 MB over loopback, beside Boost.Beast as it comes, Beast tuned for each
// size, and libwebsockets. All talk to the same Beast server in a process of its own, on one
// processor.
#include <sys/wait.h>
#include <unistd.h>

#include <libwebsockets.h>

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/websocket.hpp>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "one_processor.h"
#include "ratios.h"
#include "zentavo/framework/number_text.h"
#include "zentavo/http/web_socket_connection.h"

namespace {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace ws = boost::beast::websocket;
using asio::ip::tcp;

using Channel = ws::stream<tcp::socket, false>;

constexpr std::size_t kSmall = 125;
constexpr std::size_t kLarge = 1 << 20;

void Tune(Channel& channel) {
  channel.next_layer().set_option(tcp::no_delay(true));
  channel.auto_fragment(false);
  channel.write_buffer_bytes(kLarge);
  channel.read_message_max(0);
  channel.binary(true);
}

// The server's side of one client, until it closes.
void Echo(Channel& channel, std::span<char> buffer) {
  boost::system::error_code ec;
  for (;;) {
    std::size_t size = 0;
    do {
      size += channel.read_some(asio::buffer(buffer.data() + size, buffer.size() - size), ec);
    } while (!ec && !channel.is_message_done());
    if (ec) return;
    channel.write(asio::buffer(buffer.data(), size), ec);
  }
}

[[noreturn]] void Serve(asio::io_context& context, tcp::acceptor& acceptor) {
  std::vector<char> buffer(kLarge + 1);
  for (;;) {
    Channel channel(acceptor.accept(context));
    Tune(channel);
    boost::system::error_code ec;
    channel.accept(ec);
    if (!ec) Echo(channel, buffer);
  }
}

// An echo server for clients one after the other, in a child process.
class Server {
 public:
  Server() : acceptor_(context_, {asio::ip::address_v4::loopback(), 0}) {
    port_ = acceptor_.local_endpoint().port();
    child_ = fork();
    if (child_ == 0) Serve(context_, acceptor_);
  }
  ~Server() {
    kill(child_, SIGKILL);
    waitpid(child_, nullptr, 0);
  }
  std::uint16_t Port() const { return port_; }

 private:
  asio::io_context context_;
  tcp::acceptor acceptor_;
  std::uint16_t port_ = 0;
  pid_t child_ = 0;
};

const Server& TheServer() {
  static const Server server;
  return server;
}

void Fail(const char* what) {
  std::fprintf(stderr, "%s failed\n", what);
  std::abort();
}

void Own(benchmark::State& state, std::size_t size) {
  zentavo::TWebSocketConnection channel;
  if (!channel.Open(u"ws://127.0.0.1:" + zentavo::IntToStr(TheServer().Port()) + u"/")) {
    Fail("zentavo");
  }
  const std::string message(size, 'x');
  zentavo::TMemoryStream answer;
  for (auto _ : state) {
    if (!channel.SendMsg(message) || !channel.ReceiveMsg(answer)) Fail("zentavo");
    benchmark::DoNotOptimize(answer.Memory());
  }
  if (answer.Size() != static_cast<std::int64_t>(size)) Fail("zentavo");
  channel.Close();
}

Channel ConnectBeast(asio::io_context& context) {
  Channel channel(context);
  channel.next_layer().connect({asio::ip::address_v4::loopback(), TheServer().Port()});
  channel.handshake("127.0.0.1", "/");
  return channel;
}

void BeastTuned(benchmark::State& state, std::size_t size) {
  asio::io_context context;
  Channel channel = ConnectBeast(context);
  Tune(channel);
  const std::string message(size, 'x');
  std::vector<char> answer(size + 1);
  for (auto _ : state) {
    channel.write(asio::buffer(message));
    std::size_t received = 0;
    do {
      received +=
          channel.read_some(asio::buffer(answer.data() + received, answer.size() - received));
    } while (!channel.is_message_done());
    benchmark::DoNotOptimize(answer.data());
  }
  channel.close(ws::close_code::normal);
}

void BeastPlain(benchmark::State& state, std::size_t size) {
  asio::io_context context;
  Channel channel = ConnectBeast(context);
  channel.binary(true);
  const std::string message(size, 'x');
  beast::flat_buffer answer;
  for (auto _ : state) {
    channel.write(asio::buffer(message));
    answer.clear();
    channel.read(answer);
    benchmark::DoNotOptimize(answer.data());
  }
  channel.close(ws::close_code::normal);
}

// One echo after the other, driven by the library's loop.
struct LwsEcho {
  std::vector<unsigned char> outgoing;
  std::size_t size = 0;
  std::vector<char> answer;
  std::size_t received = 0;
  bool connected = false, failed = false, done = false, send = false;
};

int OnLws(lws* wsi, lws_callback_reasons reason, void*, void* in, std::size_t length) {
  auto* const echo = static_cast<LwsEcho*>(lws_context_user(lws_get_context(wsi)));
  switch (reason) {
    case LWS_CALLBACK_CLIENT_ESTABLISHED: echo->connected = true; break;
    case LWS_CALLBACK_CLIENT_CONNECTION_ERROR: echo->failed = true; break;
    case LWS_CALLBACK_CLIENT_WRITEABLE:
      if (echo->send) {
        lws_write(wsi, echo->outgoing.data() + LWS_PRE, echo->size, LWS_WRITE_BINARY);
      }
      echo->send = false;
      break;
    case LWS_CALLBACK_CLIENT_RECEIVE:
      std::copy_n(static_cast<const char*>(in), length, echo->answer.data() + echo->received);
      echo->received += length;
      echo->done = lws_is_final_fragment(wsi) != 0 && lws_remaining_packet_payload(wsi) == 0;
      break;
    default: break;
  }
  return 0;
}

void Libwebsockets(benchmark::State& state, std::size_t size) {
  lws_set_log_level(0, nullptr);
  LwsEcho echo;
  echo.outgoing.resize(LWS_PRE + size, 'x');
  echo.size = size;
  echo.answer.resize(size);
  const std::size_t receive_buffer = size < 4096 ? 4096 : 262144;
  const lws_protocols protocols[] = {{"echo", OnLws, 0, receive_buffer, 0, nullptr, 0},
                                     {nullptr, nullptr, 0, 0, 0, nullptr, 0}};
  lws_context_creation_info info{};
  info.port = CONTEXT_PORT_NO_LISTEN;
  info.protocols = protocols;
  info.user = &echo;
  const std::unique_ptr<lws_context, decltype(&lws_context_destroy)> context(
      lws_create_context(&info), lws_context_destroy);
  lws_client_connect_info connect{};
  connect.context = context.get();
  connect.address = connect.host = connect.origin = "127.0.0.1";
  connect.port = TheServer().Port();
  connect.path = "/";
  connect.local_protocol_name = "echo";
  lws* const wsi = lws_client_connect_via_info(&connect);
  while (wsi != nullptr && !echo.connected && !echo.failed) lws_service(context.get(), 0);
  if (!echo.connected) Fail("libwebsockets");
  for (auto _ : state) {
    echo.received = 0;
    echo.done = false;
    echo.send = true;
    lws_callback_on_writable(wsi);
    while (!echo.done) lws_service(context.get(), 0);
    benchmark::DoNotOptimize(echo.answer.data());
  }
}

// The wall clock: half of an echo is the server's.
void Register(const char* name, std::size_t size) {
  const std::string of = name;
  const auto add = [&](const char* who, void (*run)(benchmark::State&, std::size_t)) {
    benchmark::RegisterBenchmark((of + "/" + who).c_str(), [=](benchmark::State& state) {
      run(state, size);
    })->UseRealTime();
  };
  add("zentavo", Own);
  add("beast_tuned", BeastTuned);
  add("beast", BeastPlain);
  add("libwebsockets", Libwebsockets);
}

}  // namespace

int main(int argc, char** argv) {
  bench::UseOneProcessor();
  TheServer();
  Register("echo_125B", kSmall);
  Register("echo_1MB", kLarge);
  return bench::RunWithRatios(argc, argv);
}
