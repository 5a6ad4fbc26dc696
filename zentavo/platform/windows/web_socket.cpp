#include "zentavo/platform/web_socket.h"

#include <algorithm>
#include <utility>

#include "zentavo/platform/windows/web_socket_calls.h"
#include "zentavo/platform/windows/wide.h"

namespace zentavo::platform {

namespace {

constexpr DWORD kLongestClosing = 10000;       // milliseconds
constexpr std::size_t kReceiveBuffer = 65536;  // bytes
constexpr std::uint32_t kSwitchingProtocols = 101;
constexpr std::uint16_t kNormal = 1000;
constexpr std::uint16_t kGoingAway = 1001;
constexpr std::uint16_t kNoStatus = 1005;
constexpr std::size_t kLongestReason = 123;  // bytes, by the protocol

// The system's codes of broken connections as one.
SystemError Uniform(SystemError error) {
  switch (error) {
    case WSAECONNABORTED:
    case WSAECONNRESET:
    case WSAENOTCONN:
    case WSAESHUTDOWN:
    case ERROR_WINHTTP_OPERATION_CANCELLED: return kHttpConnectionError;
    case WSAETIMEDOUT: return kHttpTimeout;
    default: return error;
  }
}

SystemError Exchange(HttpRequest& request) {
  if (!WinHttpSetOption(request.Native().handle.get(), WINHTTP_OPTION_UPGRADE_TO_WEB_SOCKET,
                        nullptr, 0)) {
    return GetLastError();
  }
  const SystemError error = request.Send({}, nullptr);
  return error == 0 ? request.Receive() : error;
}

std::uint32_t StatusOf(HINTERNET request) {
  DWORD status = 0;
  DWORD size = sizeof status;
  WinHttpQueryHeaders(request, WINHTTP_QUERY_STATUS_CODE | WINHTTP_QUERY_FLAG_NUMBER,
                      WINHTTP_HEADER_NAME_BY_INDEX, &status, &size, WINHTTP_NO_HEADER_INDEX);
  return status;
}

// Milliseconds, 0 without end.
DWORD TimeoutOf(HINTERNET request, DWORD option) {
  DWORD timeout = 0;
  DWORD size = sizeof timeout;
  WinHttpQueryOption(request, option, &timeout, &size);
  return timeout != INFINITE ? timeout : 0;
}

}  // namespace

struct WebSocket::State {
  SystemError Run(DWORD timeout_ms, WebSocketCalls::Call call);
  SystemError Fetch();
  void TakePeerClose();
  void AnswerClose();

  // No call may follow a failed one, nor the peer's close.
  bool Usable() const { return calls && !failed && peer_close.status == 0; }

  SharedCalls calls;  // null once a call was left behind
  bool failed = false;
  DWORD send_ms = 0;
  DWORD receive_ms = 0;
  std::size_t taken = 0;  // bytes of what was received
  WebSocketClose peer_close;
};

// A receive that was left behind ends when the peer answers the shutdown.
SystemError WebSocket::State::Run(DWORD timeout_ms, WebSocketCalls::Call call) {
  const SystemError error = Uniform(RunWithin(timeout_ms, calls, call));
  failed = error != 0;
  if (error != kHttpTimeout) return error;
  const SharedCalls left = std::exchange(calls, nullptr);
  if (call != ReceiveCall) return error;
  left->close_status = kGoingAway;
  RunUnattended(left, ShutdownCall);
  return error;
}

SystemError WebSocket::State::Fetch() {
  calls->received = 0;
  taken = 0;
  calls->incoming.resize(kReceiveBuffer);
  return Run(receive_ms, ReceiveCall);
}

void WebSocket::State::TakePeerClose() {
  USHORT status = 0;
  char reason[kLongestReason] = {};
  DWORD length = 0;
  SystemWebSockets().query_close_status(calls->handle.get(), &status, reason, sizeof reason,
                                        &length);
  peer_close.status = status != 0 ? status : kNoStatus;
  peer_close.reason.assign(reason, std::min<std::size_t>(length, sizeof reason));
}

void WebSocket::State::AnswerClose() {
  TakePeerClose();
  calls->close_status = peer_close.status != kNoStatus ? peer_close.status : kNormal;
  RunUnattended(calls, ShutdownCall);
}

WebSocket::WebSocket(std::unique_ptr<State> state) : state_(std::move(state)) {}
WebSocket::~WebSocket() = default;

std::unique_ptr<WebSocket> WebSocket::Open(const HttpConnection& connection,
                                           std::u16string_view path, std::uint32_t& answer,
                                           SystemError& error) {
  answer = 0;
  error = kWebSocketUnsupported;
  if (!SystemWebSockets().Complete()) return nullptr;
  const auto request = HttpRequest::Open(connection, path, u"GET", error);
  if (!request) return nullptr;
  error = Exchange(*request);
  if (error != 0) return nullptr;
  const HINTERNET handle = request->Native().handle.get();
  answer = StatusOf(handle);
  error = kHttpInvalidResponse;
  if (answer != kSwitchingProtocols) return nullptr;
  const HINTERNET socket = SystemWebSockets().complete_upgrade(handle, 0);
  if (socket == nullptr) return nullptr;
  error = 0;
  auto state = std::make_unique<State>();
  state->calls = std::make_shared<WebSocketCalls>(connection.Native(), socket);
  state->send_ms = TimeoutOf(handle, WINHTTP_OPTION_SEND_TIMEOUT);
  state->receive_ms = TimeoutOf(handle, WINHTTP_OPTION_RECEIVE_TIMEOUT);
  return std::unique_ptr<WebSocket>(new WebSocket(std::move(state)));
}

SystemError WebSocket::Send(std::span<const std::byte> message) {
  if (message.size() > MAXDWORD) return kHttpInvalidParameter;
  if (!state_->Usable()) return kWebSocketClosed;
  state_->calls->outgoing.assign(message.begin(), message.end());
  return state_->Run(state_->send_ms, SendCall);
}

SystemError WebSocket::Receive(std::span<std::byte> buffer, WebSocketPiece& piece) {
  piece = {};
  State& state = *state_;
  if (!state.Usable()) return kWebSocketClosed;
  if (state.taken == state.calls->received) {
    if (const SystemError error = state.Fetch()) return error;
  }
  const WINHTTP_WEB_SOCKET_BUFFER_TYPE type = state.calls->type;
  if (type == WINHTTP_WEB_SOCKET_CLOSE_BUFFER_TYPE) {
    state.AnswerClose();
    piece.is_close = true;
    return 0;
  }
  piece.count = std::min<std::size_t>(buffer.size(), state.calls->received - state.taken);
  std::copy_n(state.calls->incoming.begin() + static_cast<std::ptrdiff_t>(state.taken), piece.count,
              buffer.begin());
  state.taken += piece.count;
  piece.is_text = type == WINHTTP_WEB_SOCKET_UTF8_MESSAGE_BUFFER_TYPE ||
                  type == WINHTTP_WEB_SOCKET_UTF8_FRAGMENT_BUFFER_TYPE;
  piece.is_last = state.taken == state.calls->received &&
                  (type == WINHTTP_WEB_SOCKET_BINARY_MESSAGE_BUFFER_TYPE ||
                   type == WINHTTP_WEB_SOCKET_UTF8_MESSAGE_BUFFER_TYPE);
  return 0;
}

SystemError WebSocket::Close(std::uint16_t status) {
  State& state = *state_;
  if (state.peer_close.status != 0) return 0;
  if (!state.Usable()) return kWebSocketClosed;
  state.calls->close_status = status;
  const DWORD limit =
      state.receive_ms != 0 ? std::min(state.receive_ms, kLongestClosing) : kLongestClosing;
  const SystemError error = state.Run(limit, CloseCall);
  if (error == 0) state.TakePeerClose();
  return error;
}

void WebSocket::Abandon(std::uint16_t status) {
  if (!state_->Usable()) return;
  state_->calls->close_status = status;
  state_->failed = true;
  RunUnattended(state_->calls, ShutdownCall);
}

const WebSocketClose& WebSocket::PeerClose() const {
  return state_->peer_close;
}

}  // namespace zentavo::platform
