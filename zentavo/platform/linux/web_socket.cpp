#include "zentavo/platform/web_socket.h"

#include <algorithm>
#include <array>
#include <boost/asio/io_context.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/websocket.hpp>
#include <charconv>
#include <utility>

#include "zentavo/platform/linux/path_bytes.h"
#include "zentavo/platform/linux/web_socket_link.h"

namespace zentavo::platform {

namespace {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace ws = boost::beast::websocket;
using boost::system::error_code;

constexpr std::int32_t kLongestClosing = 10000;               // milliseconds
constexpr std::size_t kWriteBuffer = std::size_t{128} << 10;  // bytes masked and written at once

// The streams ask for a context although nothing here is asynchronous; it never runs.
asio::io_context& IdleContext() {
  static auto* const context = new asio::io_context(1);
  return *context;
}

// Says that the link failed; how, it keeps itself.
error_code LinkFailure() {
  return {boost::system::errc::io_error, boost::system::generic_category()};
}

// The link as Beast takes streams.
class LinkStream {
 public:
  using executor_type = asio::io_context::executor_type;

  explicit LinkStream(const HttpConnection::State& connection) : link_(connection) {}

  static executor_type get_executor() { return IdleContext().get_executor(); }
  WebSocketLink& Link() { return link_; }
  SystemError Failure() const { return failure_; }
  // Of the answer that was read first, 0 when it was none.
  std::uint32_t AnswerStatus() const;

  template <typename Buffers>
  std::size_t read_some(const Buffers& buffers, error_code& ec) {
    std::array<iovec, kMostPieces> pieces;
    if (Gather(buffers, pieces) == 0) pieces[0] = {};
    const std::size_t count = link_.Read(pieces[0].iov_base, pieces[0].iov_len, failure_);
    KeepHead({static_cast<const char*>(pieces[0].iov_base), count});
    Report(ec);
    return count;
  }
  template <typename Buffers>
  std::size_t write_some(const Buffers& buffers, error_code& ec) {
    std::array<iovec, kMostPieces> pieces;
    const std::size_t count = Gather(buffers, pieces);
    const std::size_t done = count != 0 ? link_.Write({pieces.data(), count}, failure_) : 0;
    Report(ec);
    return done;
  }
  // Beast asks that streams have these, and calls the others.
  template <typename Buffers>
  std::size_t read_some(const Buffers& buffers) {
    error_code ignored;
    return read_some(buffers, ignored);
  }
  template <typename Buffers>
  std::size_t write_some(const Buffers& buffers) {
    error_code ignored;
    return write_some(buffers, ignored);
  }

 private:
  // A frame is its head and its content.
  static constexpr std::size_t kMostPieces = 4;

  // The beginning of `buffers`, without empty ones.
  template <typename Buffers>
  static std::size_t Gather(const Buffers& buffers, std::span<iovec, kMostPieces> pieces) {
    std::size_t count = 0;
    const auto end = asio::buffer_sequence_end(buffers);
    for (auto at = asio::buffer_sequence_begin(buffers); at != end && count < kMostPieces; ++at) {
      const asio::const_buffer buffer(*at);
      if (buffer.size() == 0) continue;
      pieces[count++] = {const_cast<void*>(buffer.data()), buffer.size()};
    }
    return count;
  }
  void KeepHead(std::string_view bytes) {
    if (head_.size() < kHeadLength) head_ += bytes.substr(0, kHeadLength - head_.size());
  }
  void Report(error_code& ec) const { ec = failure_ == 0 ? error_code() : LinkFailure(); }

  static constexpr std::string_view kHeadPattern = "HTTP/1.1 ";
  static constexpr std::size_t kHeadLength = kHeadPattern.size() + 3;

  WebSocketLink link_;
  SystemError failure_ = 0;
  std::string head_;  // the first bytes of all, as far as the status goes
};

std::uint32_t LinkStream::AnswerStatus() const {
  std::uint32_t status = 0;
  if (!head_.starts_with(kHeadPattern)) return 0;
  const char* const end = head_.data() + head_.size();
  const auto read = std::from_chars(head_.data() + kHeadPattern.size(), end, status);
  return read.ec == std::errc() && head_.size() == kHeadLength ? status : 0;
}

// What Beast calls at a channel's end.
void teardown(beast::role_type, LinkStream& stream, error_code& ec) {
  stream.Link().EndWriting();
  ec = {};
}

using Channel = ws::stream<LinkStream, false>;

}  // namespace

struct WebSocket::State {
  explicit State(const HttpConnection::State& connection)
      : user_agent(connection.session->user_agent), channel(connection) {}

  WebSocketLink& Link() { return channel.next_layer().Link(); }
  SystemError ErrorOf(const error_code& ec);
  void SetOptions(const std::string& cookies);
  SystemError ShakeHands(const HttpConnection::State& connection, const std::string& path,
                         std::uint32_t& answer);
  void TakePeerClose();

  const std::string user_agent;
  Channel channel;
  WebSocketClose peer_close;
};

SystemError WebSocket::State::ErrorOf(const error_code& ec) {
  if (!ec) return 0;
  if (ec == LinkFailure()) return channel.next_layer().Failure();
  return ec == asio::error::operation_aborted ? kWebSocketClosed : kHttpInvalidResponse;
}

void WebSocket::State::SetOptions(const std::string& cookies) {
  channel.auto_fragment(false);
  channel.write_buffer_bytes(kWriteBuffer);
  channel.binary(true);
  channel.read_message_max(0);
  channel.set_option(ws::stream_base::decorator([this, cookies](ws::request_type& request) {
    request.erase(beast::http::field::user_agent);
    if (!user_agent.empty()) request.set(beast::http::field::user_agent, user_agent);
    if (!cookies.empty()) request.set(beast::http::field::cookie, cookies);
  }));
}

SystemError WebSocket::State::ShakeHands(const HttpConnection::State& connection,
                                         const std::string& path, std::uint32_t& answer) {
  SetOptions(Link().Cookies(path));
  Link().StartReading(Link().Timeouts().receive_ms);
  const std::string host = connection.origin.substr(connection.origin.find("//") + 2);
  error_code ec;
  channel.handshake(host, path, ec);
  answer = channel.next_layer().AnswerStatus();
  return ErrorOf(ec);
}

void WebSocket::State::TakePeerClose() {
  const ws::close_reason& reason = channel.reason();
  constexpr std::uint16_t kNoStatus = ws::close_code::no_status;
  peer_close.status = reason.code != ws::close_code::none ? reason.code : kNoStatus;
  peer_close.reason.assign(reason.reason.data(), reason.reason.size());
}

WebSocket::WebSocket(std::unique_ptr<State> state) : state_(std::move(state)) {}
WebSocket::~WebSocket() = default;

std::unique_ptr<WebSocket> WebSocket::Open(const HttpConnection& connection,
                                           std::u16string_view path, std::uint32_t& answer,
                                           SystemError& error) {
  const HttpConnection::State& server = *connection.Native();
  auto state = std::make_unique<State>(server);
  answer = 0;
  error = state->Link().Connect();
  if (error == 0) error = state->ShakeHands(server, PathBytes(path), answer);
  if (error != 0) return nullptr;
  return std::unique_ptr<WebSocket>(new WebSocket(std::move(state)));
}

SystemError WebSocket::Send(std::span<const std::byte> message) {
  error_code ec;
  state_->channel.write(asio::buffer(message.data(), message.size()), ec);
  return state_->ErrorOf(ec);
}

SystemError WebSocket::Receive(std::span<std::byte> buffer, WebSocketPiece& piece) {
  state_->Link().StartReading(state_->Link().Timeouts().receive_ms);
  error_code ec;
  piece.count = state_->channel.read_some(asio::buffer(buffer.data(), buffer.size()), ec);
  piece.is_text = state_->channel.got_text();
  piece.is_last = state_->channel.is_message_done();
  piece.is_close = ec == ws::error::closed;
  if (!piece.is_close) return state_->ErrorOf(ec);
  state_->TakePeerClose();
  return 0;
}

SystemError WebSocket::Close(std::uint16_t status) {
  if (state_->peer_close.status != 0) return 0;
  const std::int32_t receive_ms = state_->Link().Timeouts().receive_ms;
  state_->Link().StartReading(receive_ms > 0 ? std::min(receive_ms, kLongestClosing)
                                             : kLongestClosing);
  error_code ec;
  state_->channel.close(ws::close_reason(status), ec);
  if (!ec) state_->TakePeerClose();
  return state_->ErrorOf(ec);
}

void WebSocket::Abandon(std::uint16_t status) {
  state_->Link().StopReading();
  error_code ignored;
  state_->channel.close(ws::close_reason(status), ignored);
}

const WebSocketClose& WebSocket::PeerClose() const {
  return state_->peer_close;
}

bool LookUpWebSocketFunctions(const char16_t*) {
  return true;
}

}  // namespace zentavo::platform
